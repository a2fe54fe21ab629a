// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramStage.h"

#include "programs/Flac.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shntool.h"
#include "programs/Shorten.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kIn = u"/in/a b.x"_s;
const QString kOut = u"/out/a b.y"_s;

TEST(ProgramStages, HaveTheirCommandLines)
{
    const std::vector<std::pair<ProgramStage, QString>> rows{
        {wavpack::encoding(u"-h"_s, kIn, kOut), u"wavpack|-h|/in/a b.x|-o|/out/a b.y"_s},
        {ttaenc::encoding(kIn, kOut), u"ttaenc|/in/a b.x|-o|/out/a b.y"_s},
        {monkeysAudio::encoding(u"3000"_s, kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-c3000"_s},
        {flac::plainEncoding(false, kIn, kOut), u"flac|/in/a b.x|-o|/out/a b.y"_s},
        {flac::plainEncoding(true, kIn, kOut), u"flac|-V|/in/a b.x|-o|/out/a b.y"_s},
        {wavpack::decoding(kIn, false, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y"_s},
        {wavpack::decoding(kIn, true, kOut), u"wvunpack|/in/a b.x|-y|-o|/out/a b.y"_s},
        {ttaenc::decoding(kIn, kOut), u"ttaenc|/in/a b.x|-o|/out/a b.y"_s},
        {monkeysAudio::decoding(kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-d"_s},
        {wavpack::decodingToWavForFlac(kIn, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y|-y"_s},
        {shntool::shortenToWav(kIn, kOut), u"shntool|conv|-P|pct|-O|always|-o|wav|-n|/out/a b.y|/in/a b.x"_s},
        {flac::decodingToWav(kIn, kOut), u"flac|-d|/in/a b.x|-o|/out/a b.y|-f"_s},
        {monkeysAudio::decodingToWav(kIn, kOut), u"mac|/in/a b.x|/out/a b.y|-d"_s},
        {wavpack::decodingToWav(kIn, kOut), u"wvunpack|/in/a b.x|-o|/out/a b.y|-y"_s},
        {ttaenc::decodingToWav(kIn, kOut), u"ttaenc|/in/a b.x|-o|/out/a b.y"_s},
        {shorten::encoding(kIn, kOut), u"shorten|/in/a b.x|/out/a b.y"_s},
    };
    for (const auto &[stage, words] : rows)
        EXPECT_EQ((QStringList{stage.name} + stage.arguments).join(u'|'), words);
}

TEST(ProgramStages, ParseWithTheirOwnStatusLines)
{
    const QString wavpack = u" 45% done..."_s;
    const QString tta = u"Percent Progress: 45"_s;
    const QString mac = u"Progress: 45.3% (12 seconds remaining, 27 seconds total)"_s;
    const QString flac = u"45% complete, ratio=0.5"_s;
    const std::vector<std::tuple<ProgramStage, QString, QString>> rows{
        {wavpack::encoding(u"-f"_s, kIn, kOut), wavpack, u"Encoding to Wavpack: 45.000000%"_s},
        {ttaenc::encoding(kIn, kOut), tta, u"Encoding to TTA: 45.000000%"_s},
        {monkeysAudio::encoding(u"1000"_s, kIn, kOut), mac,
         u"Encoding to Monkey's Audio: 45.3%   12 seconds remaining"_s},
        {flac::plainEncoding(false, kIn, kOut), flac, u"Encoding to Flac: 45% ratio=0.5"_s},
        {wavpack::decoding(kIn, false, kOut), wavpack, u"Deoding From Wavpack: 45.000000%"_s},
        {ttaenc::decoding(kIn, kOut), tta, u"Decoding From TTA: 45.000000%"_s},
        {monkeysAudio::decoding(kIn, kOut), mac,
         u"Decoding from Monkey's Audio: 45.3%   12 seconds remaining"_s},
        {wavpack::decodingToWavForFlac(kIn, kOut), wavpack, u"Decoding From Wavpack 45.000000%"_s},
        {shntool::shortenToWav(kIn, kOut), u" 45% "_s, u"Decoding to WAV: 45.000000%"_s},
        {flac::decodingToWav(kIn, kOut), u"a.flac: 45% complete"_s, u"Decoding to WAV: 45.000000%"_s},
        {monkeysAudio::decodingToWav(kIn, kOut), mac, u"Decoding to WAV: 45.3%   12 seconds remaining"_s},
        {wavpack::decodingToWav(kIn, kOut), wavpack, u"Decoding to WAV: 45.000000%"_s},
    };
    for (const auto &[stage, chunk, status] : rows)
        EXPECT_EQ(stage.parse(chunk).status, status);
}

TEST(ProgramStages, StopAsTheirProgramsDemand)
{
    // Those of TTA read on whatever happens; unwatched ones do not even look at a cancelled
    // job or at the status.
    struct Row {
        ProgramStage stage;
        bool stopsOnError;
        bool stopsOnCancel;
        bool looksAtExitStatus;
    };
    const std::vector<Row> rows{
        {wavpack::encoding(u"-f"_s, kIn, kOut), true, true, true},
        {ttaenc::encoding(kIn, kOut), false, true, true},
        {monkeysAudio::encoding(u"1000"_s, kIn, kOut), true, true, true},
        {flac::plainEncoding(false, kIn, kOut), true, true, true},
        {wavpack::decoding(kIn, true, kOut), true, true, true},
        {ttaenc::decoding(kIn, kOut), false, true, true},
        {monkeysAudio::decoding(kIn, kOut), true, true, true},
        {wavpack::decodingToWavForFlac(kIn, kOut), true, true, true},
        {shntool::shortenToWav(kIn, kOut).unwatched(), false, false, false},
        {shntool::shortenToWav(kIn, kOut), true, true, true},
        {flac::decodingToWav(kIn, kOut), true, true, true},
        {monkeysAudio::decodingToWav(kIn, kOut), true, true, true},
        {wavpack::decodingToWav(kIn, kOut), true, true, true},
        {ttaenc::decodingToWav(kIn, kOut), true, true, true},
        {shorten::encoding(kIn, kOut), true, true, true},
        {flac::decodingToWav(kIn, kOut).unwatched(), false, false, false},
        {monkeysAudio::decodingToWav(kIn, kOut).unwatched(), false, false, false},
        {wavpack::decodingToWav(kIn, kOut).unwatched(), false, false, false},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(row.stage.stopsOnError, row.stopsOnError) << qPrintable(row.stage.name);
        EXPECT_EQ(row.stage.stopsOnCancel, row.stopsOnCancel) << qPrintable(row.stage.name);
        EXPECT_EQ(row.stage.looksAtExitStatus, row.looksAtExitStatus) << qPrintable(row.stage.name);
    }
}

TEST(ProgramStages, KnowTheirMarkersOfFailure)
{
    const QString damaged = u"couldn't read all samples, file may be corrupt!!"_s;
    const QString question = u"overwrite x.wv (yes/no/all)? "_s;
    const auto tells = [](const ProgramStage &stage, const QString &text) {
        return stage.tellsOfError && stage.tellsOfError(text);
    };
    const ProgramStage toWavpack = wavpack::encoding(u"-f"_s, kIn, kOut);
    EXPECT_TRUE(tells(toWavpack, u"x "_s + damaged));
    EXPECT_TRUE(tells(toWavpack, question));
    EXPECT_FALSE(tells(toWavpack, u"overwrite x.wv"_s));
    EXPECT_FALSE(tells(toWavpack, u"(yes/no/all)?"_s));
    EXPECT_FALSE(tells(toWavpack, u"Error: 10"_s));
    const ProgramStage fromWavpack = wavpack::decoding(kIn, false, kOut);
    EXPECT_TRUE(tells(fromWavpack, question));
    EXPECT_FALSE(tells(fromWavpack, damaged));
    // In a decoding to a temporary WAV, which has no other file in its place, it is no failure.
    EXPECT_FALSE(tells(wavpack::decodingToWav(kIn, kOut), question));
    for (const ProgramStage &stage : {toWavpack, fromWavpack, wavpack::decodingToWav(kIn, kOut)}) {
        EXPECT_TRUE(stage.asksToOverwrite(question));
        EXPECT_FALSE(stage.asksToOverwrite(damaged));
    }
    for (const ProgramStage &mac : {monkeysAudio::encoding(u"1000"_s, kIn, kOut),
                                 monkeysAudio::decoding(kIn, kOut), monkeysAudio::decodingToWav(kIn, kOut)}) {
        EXPECT_TRUE(tells(mac, u"Error: 10"_s));
        EXPECT_TRUE(tells(mac, u"Error: 1009"_s));
        EXPECT_TRUE(tells(mac, u"x\nError: 2000\n"_s));
        EXPECT_FALSE(tells(mac, u"Error: 1"_s));
        EXPECT_FALSE(tells(mac, u"Error: 2001"_s));
    }
    for (const ProgramStage &stage : {ttaenc::encoding(kIn, kOut), ttaenc::decoding(kIn, kOut),
                                   flac::decodingToWav(kIn, kOut), shntool::shortenToWav(kIn, kOut)})
        EXPECT_FALSE(tells(stage, damaged + question + u"Error: 10"_s));
}

} // namespace
} // namespace nurv
