// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ToolStage.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kIn = u"/in/a b.x"_s;
const QString kOut = u"/out/a b.y"_s;

TEST(ToolStages, HaveTheirCommandLines)
{
    const std::vector<std::pair<ToolStage, QString>> rows{
        {toolStages::encodeWavpack(u"-h"_s, kIn, kOut), u"wavpack|-h|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::encodeTta(kIn, kOut), u"ttaenc|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::encodeMonkeysAudio(u"3000"_s, kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-c3000"_s},
        {toolStages::encodeFlac(false, kIn, kOut), u"flac|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::encodeFlac(true, kIn, kOut), u"flac|-V|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::decodeWavpack(kIn, false, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::decodeWavpack(kIn, true, kOut), u"wvunpack|/in/a b.x|-y|-o|/out/a b.y"_s},
        {toolStages::decodeTta(kIn, kOut), u"ttaenc|/in/a b.x|-o|/out/a b.y"_s},
        {toolStages::decodeMonkeysAudio(kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-d"_s},
        {toolStages::wavpackToWavForFlac(kIn, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y|-y"_s},
        {toolStages::shortenToWav(kIn, kOut), u"shntool|conv|-P|pct|-O|always|-o|wav|-n|/out/a b.y|/in/a b.x"_s},
        {toolStages::flacToWav(kIn, kOut), u"flac|-d|/in/a b.x|-o|/out/a b.y|-f"_s},
        {toolStages::monkeysAudioToWav(kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-d"_s},
        {toolStages::wavpackToWav(kIn, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y|-y"_s},
    };
    for (const auto &[stage, words] : rows)
        EXPECT_EQ((QStringList{stage.name} + stage.arguments).join(u'|'), words);
}

TEST(ToolStages, ParseWithTheirOwnStatusLines)
{
    const QString wavpack = u" 45% done..."_s;
    const QString tta = u"Percent Progress: 45"_s;
    const QString mac = u"Progress: 45.3% (12 seconds remaining, 27 seconds total)"_s;
    const QString flac = u"45% complete, ratio=0.5"_s;
    const std::vector<std::tuple<ToolStage, QString, QString>> rows{
        {toolStages::encodeWavpack(u"-f"_s, kIn, kOut), wavpack, u"Encoding to Wavpack: 45.000000%"_s},
        {toolStages::encodeTta(kIn, kOut), tta, u"Encoding to TTA: 45.000000%"_s},
        {toolStages::encodeMonkeysAudio(u"1000"_s, kIn, kOut), mac,
         u"Encoding to Monkey's Audio: 45.3%   12 seconds remaining"_s},
        {toolStages::encodeFlac(false, kIn, kOut), flac, u"Encoding to Flac: 45% ratio=0.5"_s},
        {toolStages::decodeWavpack(kIn, false, kOut), wavpack, u"Deoding From Wavpack: 45.000000%"_s},
        {toolStages::decodeTta(kIn, kOut), tta, u"Decoding From TTA: 45.000000%"_s},
        {toolStages::decodeMonkeysAudio(kIn, kOut), mac,
         u"Decoding from Monkey's Audio: 45.3%   12 seconds remaining"_s},
        {toolStages::wavpackToWavForFlac(kIn, kOut), wavpack, u"Decoding From Wavpack 45.000000%"_s},
        {toolStages::shortenToWav(kIn, kOut), u" 45% "_s, u"Decoding to WAV: 45.000000%"_s},
        {toolStages::flacToWav(kIn, kOut), u"a.flac: 45% complete"_s, u"Decoding to WAV: 45.000000%"_s},
        {toolStages::monkeysAudioToWav(kIn, kOut), mac, u"Decoding to WAV: 45.3%   12 seconds remaining"_s},
        {toolStages::wavpackToWav(kIn, kOut), wavpack, u"Decoding to WAV: 45.000000%"_s},
    };
    for (const auto &[stage, chunk, status] : rows)
        EXPECT_EQ(stage.parse(chunk).status, status);
}

TEST(ToolStages, StopAsTheirToolsDemand)
{
    // Those of TTA read on whatever happens; those that decode for Apple Lossless do not
    // even look at a cancelled job or at the status.
    struct Row {
        ToolStage stage;
        bool stopsOnError;
        bool stopsOnCancel;
        bool looksAtExitStatus;
    };
    const std::vector<Row> rows{
        {toolStages::encodeWavpack(u"-f"_s, kIn, kOut), true, true, true},
        {toolStages::encodeTta(kIn, kOut), false, true, true},
        {toolStages::encodeMonkeysAudio(u"1000"_s, kIn, kOut), true, true, true},
        {toolStages::encodeFlac(false, kIn, kOut), true, true, true},
        {toolStages::decodeWavpack(kIn, true, kOut), true, true, true},
        {toolStages::decodeTta(kIn, kOut), false, true, true},
        {toolStages::decodeMonkeysAudio(kIn, kOut), true, true, true},
        {toolStages::wavpackToWavForFlac(kIn, kOut), true, true, true},
        {toolStages::shortenToWav(kIn, kOut), false, false, false},
        {toolStages::flacToWav(kIn, kOut), false, false, false},
        {toolStages::monkeysAudioToWav(kIn, kOut), false, false, false},
        {toolStages::wavpackToWav(kIn, kOut), false, false, false},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(row.stage.stopsOnError, row.stopsOnError) << qPrintable(row.stage.name);
        EXPECT_EQ(row.stage.stopsOnCancel, row.stopsOnCancel) << qPrintable(row.stage.name);
        EXPECT_EQ(row.stage.looksAtExitStatus, row.looksAtExitStatus) << qPrintable(row.stage.name);
    }
}

TEST(ToolStages, KnowTheirMarkersOfFailure)
{
    const QString damaged = u"couldn't read all samples, file may be corrupt!!"_s;
    const QString question = u"overwrite x.wv (yes/no/all)? "_s;
    const auto tells = [](const ToolStage &stage, const QString &text) {
        return stage.tellsOfError && stage.tellsOfError(text);
    };
    const ToolStage toWavpack = toolStages::encodeWavpack(u"-f"_s, kIn, kOut);
    EXPECT_TRUE(tells(toWavpack, u"x "_s + damaged));
    EXPECT_TRUE(tells(toWavpack, question));
    EXPECT_FALSE(tells(toWavpack, u"overwrite x.wv"_s));
    EXPECT_FALSE(tells(toWavpack, u"(yes/no/all)?"_s));
    EXPECT_FALSE(tells(toWavpack, u"Error: 10"_s));
    const ToolStage fromWavpack = toolStages::decodeWavpack(kIn, false, kOut);
    EXPECT_TRUE(tells(fromWavpack, question));
    EXPECT_FALSE(tells(fromWavpack, damaged));
    for (const ToolStage &mac : {toolStages::encodeMonkeysAudio(u"1000"_s, kIn, kOut),
                                 toolStages::decodeMonkeysAudio(kIn, kOut), toolStages::monkeysAudioToWav(kIn, kOut)}) {
        EXPECT_TRUE(tells(mac, u"Error: 10"_s));
        EXPECT_TRUE(tells(mac, u"Error: 1009"_s));
        EXPECT_TRUE(tells(mac, u"x\nError: 2000\n"_s));
        EXPECT_FALSE(tells(mac, u"Error: 1"_s));
        EXPECT_FALSE(tells(mac, u"Error: 2001"_s));
    }
    for (const ToolStage &stage : {toolStages::encodeTta(kIn, kOut), toolStages::decodeTta(kIn, kOut),
                                   toolStages::flacToWav(kIn, kOut), toolStages::shortenToWav(kIn, kOut)})
        EXPECT_FALSE(tells(stage, damaged + question + u"Error: 10"_s));
}

} // namespace
} // namespace nurv
