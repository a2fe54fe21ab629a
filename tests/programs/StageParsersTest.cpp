// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramStage.h"

#include "programs/Flac.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shntool.h"
#include "programs/Transcript.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kLabel = u"Doing: "_s;

TEST(StageParsers, ShowWavpackFigures)
{
    const ChunkReport report = wavpack::parseEncoding(u"\b\b\b 45% done...\b\b\b"_s);
    EXPECT_EQ(report.status, u"Encoding to Wavpack: 45.000000%"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(report.results, u" 45% done...");
    EXPECT_FALSE(report.repaintsTitle);
}

TEST(StageParsers, LeaveTheStatusOfWavpackTextWithoutTheWordsBehindTheFigure)
{
    const ChunkReport report = wavpack::parseEncoding(u"created a.wv in 0.01 secs (lossless, 88.18%)\n"_s);
    EXPECT_FALSE(report.status);
    EXPECT_FALSE(report.progress);
    EXPECT_EQ(report.results, u"created a.wv in 0.01 secs (lossless, 88.18%)\n");
}

TEST(StageParsers, ShowNoProgressForAWavpackLineThatBeginsWithText)
{
    const ChunkReport report = wavpack::parseEncoding(u"creating a.wv,  45% done..."_s);
    EXPECT_EQ(report.status, u"Encoding to Wavpack: 0.000000%"_s);
    EXPECT_EQ(report.progress, 0.0);
}

TEST(StageParsers, TakeTheFirstOfSeveralFigures)
{
    EXPECT_EQ(wavpack::parseEncoding(u" 45% done...\b\b 46% done..."_s).progress, 45.0);
    EXPECT_EQ(ttaenc::parse(u"Percent Progress: 45\b\b\b\bPercent Progress: 46"_s, kLabel).progress, 45.0);
    EXPECT_EQ(
        monkeysAudio::parse(u"Progress: 1.0% (9 seconds remaining, 9 x)Progress: 2.0% (8 seconds remaining, "_s, kLabel)
            .progress,
        1.0);
}

TEST(StageParsers, ReportWavpackDecodingTwice)
{
    const ChunkReport report = wavpack::parseDecoding(u"\b 7% done...\b"_s, u"Deoding From Wavpack: "_s);
    EXPECT_EQ(report.status, u"Deoding From Wavpack: 7.000000%"_s);
    EXPECT_EQ(report.results, u" 7% done... 7% done...");
    EXPECT_EQ(wavpack::parseDecoding(u"restored\n"_s, kLabel).results, u"restored\nrestored\n");
    EXPECT_FALSE(wavpack::parseDecoding(u"restored 5%\n"_s, kLabel).status);
}

TEST(StageParsers, ReportTtaTwice)
{
    const ChunkReport report = ttaenc::parse(u"\b\bPercent Progress: 45\b"_s, u"Encoding to TTA: "_s);
    EXPECT_EQ(report.status, u"Encoding to TTA: 45.000000%"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(report.results, u"Percent Progress: 45Percent Progress: 45");
    const ChunkReport other = ttaenc::parse(u"x: neither\n"_s, kLabel);
    EXPECT_FALSE(other.status);
    EXPECT_EQ(other.results, u"x: neither\nx: neither\n");
    EXPECT_EQ(ttaenc::parse(u"Percent Progress: "_s, kLabel).status, u"Doing: 0.000000%"_s);
    EXPECT_EQ(ttaenc::parse(u"Percent Progress: 45% of 100"_s, kLabel).progress, 45.0);
}

TEST(StageParsers, ShowMonkeysAudioWithThreeBlanks)
{
    const ChunkReport report = monkeysAudio::parse(u"\rProgress: 45.2% (12.3 seconds remaining, 27.0 seconds total)   "_s,
                                                 u"Encoding to Monkey's Audio"_s);
    EXPECT_EQ(report.status, u"Encoding to Monkey's Audio: 45.2%   12.3 seconds remaining"_s);
    EXPECT_EQ(report.progress, 45.2);
    EXPECT_EQ(report.results, u"\rProgress: 45.2% (12.3 seconds remaining, 27.0 seconds total)   ");
    EXPECT_FALSE(report.repaintsTitle);
}

TEST(StageParsers, WantAllThreeMarksOfMonkeysAudio)
{
    for (const QString &text : {u"45.2% (12.3 seconds remaining, 27"_s, u"Progress: 45.2 (12.3 seconds remaining, 27"_s,
                                u"Progress: 45.2% (12.3 seconds remaining"_s, u"Progress: 45.2%"_s, u""_s}) {
        const ChunkReport report = monkeysAudio::parse(text, kLabel);
        EXPECT_FALSE(report.status) << qPrintable(text);
        EXPECT_EQ(report.results, text);
    }
}

TEST(StageParsers, StandMonkeysAudioMarksInTheWrongOrder)
{
    // Nothing here may read behind the text; what is shown is nobody's promise.
    for (const QString &text : {u"% seconds remaining, Progress: "_s, u"% Progress: 5 seconds remaining, "_s,
                                u"Progress:  seconds remaining, 5%"_s, u"Progress: % ( seconds remaining, "_s,
                                u"seconds remaining, (5 Progress: %"_s}) {
        const ChunkReport report = monkeysAudio::parse(text, kLabel);
        ASSERT_TRUE(report.status);
        EXPECT_TRUE(report.status->startsWith(u"Doing: "_s)) << qPrintable(*report.status);
        EXPECT_TRUE(report.status->endsWith(u" seconds remaining"_s)) << qPrintable(*report.status);
    }
}

TEST(StageParsers, FillTheStatusOfShortenToWavForEveryChunk)
{
    EXPECT_EQ(shntool::parseShortenToWav(u" 45% \b\b\b"_s).status, u"Decoding to WAV: 45.000000%"_s);
    EXPECT_EQ(shntool::parseShortenToWav(u" 45% "_s).progress, 45.0);
    const ChunkReport none = shntool::parseShortenToWav(u"\b\b"_s);
    EXPECT_EQ(none.status, u"Decoding to WAV: -1.000000%"_s);
    EXPECT_EQ(none.progress, -1.0);
    EXPECT_EQ(none.results, u"");
}

TEST(StageParsers, ReportShortenToWavLikeAnyConversionByShntool)
{
    EXPECT_EQ(shntool::parseShortenToWav(u"Converting [a.shn] : "_s).results, u"Converting [a.shn] Converting [a.shn] : ");
    EXPECT_EQ(shntool::parseShortenToWav(u"100% OK\n"_s).results, u"100% OK\n100% OK\n");
    EXPECT_EQ(shntool::parseShortenToWav(u"ERROR\n"_s).results, u"ERROR\nERROR\n");
    EXPECT_EQ(shntool::parseShortenToWav(u" 5% "_s).results, u" 5% ");
}

TEST(StageParsers, ShowFlacToWavOnlyWithABlankBehindTheFigure)
{
    EXPECT_EQ(flac::parseDecodingToWav(u"x.flac: 45% complete"_s).status, u"Decoding to WAV: 45.000000%"_s);
    EXPECT_EQ(flac::parseDecodingToWav(u"\b\b46% complete\n"_s).progress, 46.0);
    EXPECT_FALSE(flac::parseDecodingToWav(u"x.flac: 45% \n"_s).status);
    EXPECT_EQ(flac::parseDecodingToWav(u" x.flac: done\n"_s).results, u"x.flac: done");
    EXPECT_TRUE(flac::parseDecodingToWav(u"x"_s).repaintsTitle);
}

TEST(StageParsers, ReportNothingOfMonkeysAudioToWav)
{
    const ChunkReport report = monkeysAudio::parseDecodingToWav(u"Progress: 45.2% (12 seconds remaining, 27 seconds total)"_s);
    EXPECT_EQ(report.status, u"Decoding to WAV: 45.2%   12 seconds remaining"_s);
    EXPECT_EQ(report.results, QString());
    EXPECT_TRUE(report.repaintsTitle);
}

TEST(StageParsers, ReportWavpackToWavTwice)
{
    EXPECT_EQ(wavpack::parseDecodingToWav(u"\b 7% done...\b"_s).status, u"Decoding to WAV: 7.000000%"_s);
    EXPECT_EQ(wavpack::parseDecodingToWav(u"x"_s).results, u"xx");
}

struct Recording {
    QString name;
    ProgramStage stage;
    QString label;
    QString figure; ///< a regular expression, its first group the number
    /// Whether chunks whose figure does not stand first show 0.
    bool figureMustStandFirst;
};

std::vector<Recording> recordings()
{
    const QString in = u"/i"_s;
    const QString out = u"/o"_s;
    const QString wavpack = u"(\\d+)% done"_s;
    const QString tta = u"Percent Progress: (\\d+)"_s;
    const QString mac = u"Progress: ([\\d.]+)%"_s;
    return {
        {u"wavpack-encode"_s, wavpack::encoding(u"-f"_s, in, out), u"Encoding to Wavpack: "_s, wavpack, true},
        {u"wavpack-5.8-encode"_s, wavpack::encoding(u"-f"_s, in, out), u"Encoding to Wavpack: "_s, wavpack, true},
        {u"wavpack-cut"_s, wavpack::encoding(u"-f"_s, in, out), u"Encoding to Wavpack: "_s, wavpack, true},
        {u"wavpack-5.8-cut"_s, wavpack::encoding(u"-f"_s, in, out), u"Encoding to Wavpack: "_s, wavpack, true},
        {u"wvunpack"_s, wavpack::decoding(in, false, out), u"Deoding From Wavpack: "_s, wavpack, true},
        {u"wvunpack-5.8"_s, wavpack::decoding(in, false, out), u"Deoding From Wavpack: "_s, wavpack, true},
        {u"wvunpack"_s, wavpack::decodingToWavForFlac(in, out), u"Decoding From Wavpack "_s, wavpack, true},
        {u"wvunpack"_s, wavpack::decodingToWav(in, out), u"Decoding to WAV: "_s, wavpack, true},
        {u"ttaenc-encode"_s, ttaenc::encoding(in, out), u"Encoding to TTA: "_s, tta, false},
        {u"ttaenc-decode"_s, ttaenc::decoding(in, out), u"Decoding From TTA: "_s, tta, false},
        {u"mac-encode"_s, monkeysAudio::encoding(u"2000"_s, in, out), u"Encoding to Monkey's Audio: "_s, mac,
         false},
        {u"mac-decode"_s, monkeysAudio::decoding(in, out), u"Decoding from Monkey's Audio: "_s, mac, false},
        {u"mac-decode"_s, monkeysAudio::decodingToWav(in, out), u"Decoding to WAV: "_s, mac, false},
        {u"flac-decode"_s, flac::decodingToWav(in, out), u"Decoding to WAV: "_s, u"(\\d+)% "_s, false},
        {u"flac-1.5-decode"_s, flac::decodingToWav(in, out), u"Decoding to WAV: "_s, u"(\\d+)% "_s, false},
    };
}

TEST(StageParsers, FollowRecordedRunsChunkByChunk)
{
    for (const Recording &recording : recordings()) {
        SCOPED_TRACE(qPrintable(recording.name));
        const QRegularExpression figure(recording.figure);
        const QList<QByteArray> chunks = test::transcriptChunks(recording.name);
        ASSERT_FALSE(chunks.isEmpty());
        int figuresSeen = 0;
        for (const QByteArray &chunk : chunks) {
            const QString text = QString::fromUtf8(chunk);
            const ChunkReport report = recording.stage.parse(text);
            const auto match = figure.match(text);
            ASSERT_EQ(report.status.has_value(), match.hasMatch()) << chunk.constData();
            if (!report.status)
                continue;
            EXPECT_TRUE(report.status->startsWith(recording.label)) << qPrintable(*report.status);
            const bool standsFirst = QString(text).remove(u'\b').trimmed().indexOf(match.captured(1)) == 0;
            EXPECT_EQ(report.progress,
                      recording.figureMustStandFirst && !standsFirst ? 0.0 : match.captured(1).toDouble())
                << chunk.constData();
            ++figuresSeen;
        }
        EXPECT_GT(figuresSeen, 2);
    }
}

TEST(StageParsers, FollowARecordedNamedConversionOfShntool)
{
    QString reported;
    double highest = 0.0;
    for (const QByteArray &chunk : test::transcriptChunks(u"shntool-conv-named"_s)) {
        const ChunkReport report = shntool::parseShortenToWav(QString::fromUtf8(chunk));
        ASSERT_TRUE(report.status);
        EXPECT_EQ(*report.status == u"Decoding to WAV: -1.000000%", !chunk.contains('%')) << chunk.constData();
        highest = std::max(highest, *report.progress);
        reported += report.results;
    }
    EXPECT_EQ(highest, 100.0);
    EXPECT_TRUE(reported.contains(u"OK\nOK\n"_s));
}

TEST(StageParsers, StandEveryCutOfARecordedRun)
{
    std::vector<Recording> all = recordings();
    all.push_back(
        {u"shntool-conv-named"_s, shntool::shortenToWav(u"/i"_s, u"/o"_s), u"Decoding to WAV: "_s, {}, false});
    for (const Recording &recording : all) {
        const QByteArray whole = test::transcriptChunks(recording.name).join();
        for (qsizetype cut = 0; cut <= whole.size(); ++cut) {
            for (const QByteArray &half : {whole.first(cut), whole.sliced(cut)}) {
                const ChunkReport report = recording.stage.parse(QString::fromUtf8(half));
                ASSERT_EQ(report.status.has_value(), report.progress.has_value());
                if (!report.status)
                    continue;
                ASSERT_TRUE(report.status->startsWith(recording.label)) << qPrintable(*report.status);
                ASSERT_GE(*report.progress, -1.0);
                ASSERT_TRUE(std::isfinite(*report.progress))
                    << "cut at " << cut << " of " << qPrintable(recording.name);
            }
        }
    }
}

TEST(StageParsers, SeeNoFailureInRecordedRunsThatEndedWell)
{
    for (const Recording &recording : recordings()) {
        const QString whole = QString::fromUtf8(test::transcriptChunks(recording.name).join());
        EXPECT_FALSE(recording.stage.tellsOfError && recording.stage.tellsOfError(whole)) << qPrintable(recording.name);
    }
}

TEST(StageParsers, SeeTheMarkersInRecordedRuns)
{
    for (const auto &[name, stage] :
         {std::pair{u"wavpack-question"_s, wavpack::encoding(u"-f"_s, u"/i"_s, u"/o"_s)},
          std::pair{u"wavpack-5.8-question"_s, wavpack::encoding(u"-f"_s, u"/i"_s, u"/o"_s)},
          std::pair{u"wvunpack-question"_s, wavpack::decoding(u"/i"_s, false, u"/o"_s)},
          std::pair{u"wvunpack-5.8-question"_s, wavpack::decoding(u"/i"_s, false, u"/o"_s)},
          std::pair{u"mac-error"_s, monkeysAudio::encoding(u"2000"_s, u"/i"_s, u"/o"_s)}}) {
        const QString whole = QString::fromUtf8(test::transcriptChunks(name).join());
        EXPECT_TRUE(stage.tellsOfError(whole)) << qPrintable(name);
    }
}

} // namespace
} // namespace nurv
