// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Flac.h"
#include "programs/Lame.h"
#include "programs/Opusenc.h"
#include "programs/ProgramOutput.h"
#include "programs/Shntool.h"
#include "programs/Transcript.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kInput = u"/in/a.wav"_s;
const QString kOutput = u"/out/a"_s;

/// The figures that a job shows for the chunks, each with the status line that it comes with.
QList<double> shownFor(const ProgramStage &stage, const QList<QByteArray> &chunks, const QString &label)
{
    QList<double> shown;
    for (const QByteArray &chunk : chunks) {
        const ChunkReport report = stage.parse(QString::fromUtf8(chunk));
        EXPECT_EQ(report.status.has_value(), report.progress.has_value());
        if (!report.progress || !report.status)
            continue;
        EXPECT_EQ(*report.status, label + QString::number(*report.progress, 'f', 6) + u'%');
        shown.append(*report.progress);
    }
    return shown;
}

TEST(LossyPrograms, ShowTheFigureThatStandsBeforeTheEndMarkOfLame)
{
    EXPECT_EQ(lame::parse(u"  685/1533  (45%)|    0:00/"_s).progress, 45.0);
    EXPECT_EQ(lame::parse(u"  685/1533  (45%)|    0:00/"_s).status, u"Encoding to MP3: 45.000000%"_s);
    EXPECT_EQ(lame::parse(u"  100/1533  ( 7%)|"_s).progress, 7.0);
    EXPECT_EQ(lame::parse(u" 1533/1533 (100%)|"_s).progress, 100.0);
    EXPECT_EQ(lame::parse(u"\b\b12 (45%)|\b"_s).results, u"12 (45%)|");
}

TEST(LossyPrograms, ShowNoFigureOfLameThatStandsTooFarInFront)
{
    EXPECT_FALSE(lame::parse(u" (45%)|"_s).progress);
    EXPECT_FALSE(lame::parse(u"45%)|"_s).progress);
    EXPECT_TRUE(lame::parse(u"  (45%)|"_s).progress);
    // Backspaces in front are no place.
    EXPECT_FALSE(lame::parse(u"\b\b\b(45%)|"_s).progress);
    EXPECT_FALSE(lame::parse(u"Encoding as 44.1 kHz (8.8x) 160 kbps\n"_s).progress);
    EXPECT_FALSE(lame::parse(u""_s).progress);
}

TEST(LossyPrograms, ShowLameInStepsOfAPercent)
{
    const ProgramStage stage = lame::encoding({u"CBR"_s, 160}, kInput, kOutput);
    const QList<QByteArray> chunks{"1/99 ( 0%)|", "1/99 ( 1%)|", "1/99 ( 1%)|", "2/99 ( 2%)|", "1/99 ( 1%)|", "3/99 ( 3%)|"};
    EXPECT_EQ(shownFor(stage, chunks, u"Encoding to MP3: "_s), (QList<double>{1, 2, 3}));
}

TEST(LossyPrograms, FollowARecordedRunOfLame)
{
    const ProgramStage stage = lame::encoding({u"VBR"_s, 2}, kInput, kOutput);
    const QList<QByteArray> chunks = test::transcriptChunks(u"lame-vbr"_s);
    EXPECT_EQ(shownFor(stage, chunks, u"Encoding to MP3: "_s),
              (QList<double>{7, 13, 20, 26, 33, 39, 46, 52, 59, 65, 72, 78, 85, 91, 98, 100}));
}

TEST(LossyPrograms, ReportARunOfLameAsATerminalShowsIt)
{
    QString results;
    for (const QByteArray &chunk : test::transcriptChunks(u"lame-vbr"_s))
        results += lame::parse(QString::fromUtf8(chunk)).results;
    const QString shown = programOutput::asOnATerminal(results);
    EXPECT_FALSE(shown.contains(u'\x1b'));
    EXPECT_EQ(shown.count(u"%)|"_s), 1) << qPrintable(shown);
    EXPECT_TRUE(shown.contains(u"(100%)|"_s));
    EXPECT_TRUE(shown.endsWith(u"Writing LAME Tag...done\nReplayGain: +13.1dB\n"_s));
}

TEST(LossyPrograms, ShowLameBehindShntoolInStepsOfAPercent)
{
    const ProgramStage stage = lame::encodingByShntool({u"VBR"_s, 2}, kInput, u"/out"_s);
    EXPECT_EQ(shownFor(stage, test::transcriptChunks(u"shntool-conv-lame"_s), u"Encoding to MP3: "_s),
              (QList<double>{3,  7,  11, 14, 18, 22, 26, 29, 33, 37, 40, 44, 48, 52,
                             55, 59, 63, 66, 70, 74, 78, 81, 85, 89, 92, 96, 100}));
}

TEST(LossyPrograms, ReportShntoolsOwnWordsTwice)
{
    EXPECT_EQ(lame::parseByShntool(u"Converting [a.flac] (0:40.00) --> [a.mp3] :   0% "_s).results,
              u"Converting [a.flac] (0:40.00) --> [a.mp3] Converting [a.flac] (0:40.00) --> [a.mp3] :   0% ");
    EXPECT_EQ(lame::parseByShntool(u"\b\bOK\n"_s).results, u"OK\nOK\n");
    EXPECT_EQ(lame::parseByShntool(u"ERROR\n"_s).results, u"ERROR\nERROR\n");
    EXPECT_EQ(lame::parseByShntool(u"\b  5% \b"_s).results, u"  5% ");
}

TEST(LossyPrograms, OnlyKeepWhatOpusencSays)
{
    const ProgramStage stage = opusenc::encoding({u"VBR"_s, 128, 20}, {}, kInput, kOutput);
    QByteArray whole;
    QString results;
    for (const QByteArray &chunk : test::transcriptChunks(u"opusenc"_s)) {
        const ChunkReport report = stage.parse(QString::fromUtf8(chunk));
        EXPECT_FALSE(report.status);
        EXPECT_FALSE(report.progress);
        whole += chunk;
        results += report.results;
    }
    EXPECT_TRUE(whole.contains("Encoding complete"));
    EXPECT_EQ(results, QString::fromUtf8(whole));
}

TEST(LossyPrograms, StandEveryCutOfARecordedRun)
{
    struct Recording {
        QString name;
        std::function<ChunkReport(const QString &)> parse;
    };
    for (const Recording &recording : {
             Recording{u"lame-vbr"_s, [](const QString &chunk) { return lame::parse(chunk); }},
             Recording{u"shntool-conv-lame"_s, [](const QString &chunk) { return lame::parseByShntool(chunk); }},
             Recording{u"opusenc"_s, opusenc::encoding({u"VBR"_s, 128, 20}, {}, kInput, kOutput).parse},
         }) {
        const QByteArray whole = test::transcriptChunks(recording.name).join();
        ASSERT_GT(whole.size(), 300);
        for (qsizetype cut = 0; cut <= whole.size(); ++cut) {
            for (const QByteArray &half : {whole.first(cut), whole.sliced(cut)}) {
                const ChunkReport report = recording.parse(QString::fromUtf8(half));
                ASSERT_EQ(report.status.has_value(), report.progress.has_value());
                if (!report.progress)
                    continue;
                ASSERT_TRUE(std::isfinite(*report.progress)) << "cut at " << cut << " of " << qPrintable(recording.name);
                ASSERT_GE(*report.progress, 0.0);
                ASSERT_LE(*report.progress, 100.0);
            }
        }
    }
}

TEST(LossyPrograms, ShowFlacOnTheWayToOpusForEveryChunkWithAFigure)
{
    const ProgramStage stage = flac::decodingToWavForOpus(kInput, kOutput);
    const QList<QByteArray> chunks{"a.flac: 45% complete", "\b\b45% complete", "\b\b44% complete", "done\n"};
    EXPECT_EQ(shownFor(stage, chunks, u"Decoding to Wav: "_s), (QList<double>{45, 45, 44}));
    EXPECT_TRUE(stage.parse(u"x"_s).repaintsTitle);
}

TEST(LossyPrograms, ShowShortenOnTheWayToOpusForEveryChunk)
{
    const ProgramStage stage = shntool::shortenToWavForOpus(kInput, kOutput);
    EXPECT_EQ(stage.parse(u" 45% "_s).status, u"Decoding to Wav: 45.000000%"_s);
    EXPECT_EQ(stage.parse(u"\b"_s).status, u"Decoding to Wav: -1.000000%"_s);
}

TEST(LossyPrograms, NameTheModesAndFramesOfOpus)
{
    const auto words = [](const QString &type, double frameSize) {
        const opusenc::OpusEncoding encoding{type, 96, frameSize};
        return std::pair{encoding.modeWord(), encoding.frameSizeWord()};
    };
    EXPECT_EQ(words(u"CBR"_s, 2.5), std::pair(std::optional(u"hard-cbr"_s), std::optional(u"2.5"_s)));
    EXPECT_EQ(words(u"VBR Constrained"_s, 5), std::pair(std::optional(u"cvbr"_s), std::optional(u"5"_s)));
    EXPECT_EQ(words(u"VBR"_s, 60), std::pair(std::optional(u"vbr"_s), std::optional(u"60"_s)));
    for (const double odd : {0.0, 2.4, 30.0, 120.0, -20.0, std::nan("")})
        EXPECT_FALSE(words(u"ABR"_s, odd).second) << odd;
    EXPECT_FALSE(words(u"ABR"_s, 20).first);
}

} // namespace
} // namespace nurv
