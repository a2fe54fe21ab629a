// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramOutput.h"

#include "programs/Flac.h"
#include "programs/Shntool.h"
#include "programs/Transcript.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Parser = std::function<ChunkReport(const QString &)>;

struct Recording {
    QString name;
    Parser parse;
    QString statusStart; ///< of every status line
};

QList<Recording> recordings()
{
    return {
        {u"flac-encode"_s, flac::parseEncoding, u"Encoding to Flac: "_s},
        {u"flac-encode-verify"_s, flac::parseEncoding, u"Encoding to Flac: "_s},
        {u"flac-1.5-encode"_s, flac::parseEncoding, u"Encoding to Flac: "_s},
        {u"flac-decode"_s, flac::parseDecoding, u"Decoding Flac: "_s},
        {u"flac-1.5-decode"_s, flac::parseDecoding, u"Decoding Flac: "_s},
        {u"shntool-conv-wav"_s, shntool::parseFromShorten, u"Decoding SHN: "_s},
        {u"shntool-conv-wav"_s, shntool::parseToShorten, u"Encoding to SHN: "_s},
        {u"shntool-conv-shn-no-encoder"_s, shntool::parseToShorten, u"Encoding to SHN: "_s},
        {u"shntool-conv-flac"_s, [](const QString &chunk) { return shntool::parseToFlac(chunk, u"SHN"_s); },
         u"Encoding SHN to Flac: "_s},
    };
}

/// The figures of a chunk, by other means than the parsers'.
QStringList figuresIn(const QByteArray &chunk)
{
    static const QRegularExpression figure(u"(\\d+)%"_s);
    QStringList figures;
    for (auto match = figure.globalMatch(QString::fromUtf8(chunk)); match.hasNext();)
        figures.append(match.next().captured(1));
    return figures;
}

TEST(ProgramOutput, MakeAnEmptyLineOfBackspaces)
{
    const ChunkReport report = flac::parseEncoding(u"\b\b\b\b"_s);
    EXPECT_FALSE(report.status);
    EXPECT_FALSE(report.progress);
    EXPECT_EQ(report.results, QString());
    EXPECT_EQ(flac::parseDecoding(u"\b\b"_s).results, QString());
    EXPECT_EQ(shntool::parseToShorten(u"\b\b"_s).results, QString());
}

TEST(ProgramOutput, ShowPercentAndRatioOfAFlacLine)
{
    const ChunkReport report = flac::parseEncoding(u"x.wav: 45% complete, ratio=0.532"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 45% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(report.results, u"x.wav: 45% complete, ratio=0.532");
}

TEST(ProgramOutput, ShowAFlacLineThatIsRewrittenInPlace)
{
    const ChunkReport report = flac::parseEncoding(u"\b\b\b\b46% complete, ratio=0.531\n"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 46% ratio=0.531"_s);
    EXPECT_EQ(report.progress, 46.0);
    EXPECT_EQ(report.results, u"46% complete, ratio=0.531");
}

TEST(ProgramOutput, CutASecondFigureOffTheRatio)
{
    const ChunkReport report = flac::parseEncoding(u"9% complete, ratio=0.53212% complete, ratio=0.540"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 9% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 9.0);
}

TEST(ProgramOutput, KeepASecondFigureBehindAFileName)
{
    const ChunkReport report = flac::parseEncoding(u"x.wav: 9% complete, ratio=0.53212% complete"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 9% ratio=0.53212% complete"_s);
}

TEST(ProgramOutput, ShowAPercentageWithoutARatio)
{
    const ChunkReport report = flac::parseEncoding(u"x.wav: 45% complete"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 45% "_s);
    EXPECT_EQ(report.progress, 45.0);
}

TEST(ProgramOutput, CutTheRatioToNothingWhenThereIsNoRoomForTheFigure)
{
    // "ratio=" itself is longer than the two places, so nothing is cut below it.
    EXPECT_EQ(flac::parseEncoding(u"1% ratio=%"_s).status, u"Encoding to Flac: 1% rati"_s);
    EXPECT_EQ(flac::parseEncoding(u"1% ratio=2%"_s).status, u"Encoding to Flac: 1% ratio"_s);
}

TEST(ProgramOutput, LeaveTheStatusOfAFlacLineWithoutPercent)
{
    const ChunkReport report = flac::parseEncoding(u" x.wav: Verify OK, wrote 10 bytes, ratio=0.1\n"_s);
    EXPECT_FALSE(report.status);
    EXPECT_FALSE(report.progress);
    EXPECT_EQ(report.results, u"x.wav: Verify OK, wrote 10 bytes, ratio=0.1");
}

TEST(ProgramOutput, LeaveTheStatusWhenNothingStandsBeforeThePercentSign)
{
    EXPECT_FALSE(flac::parseEncoding(u"% complete"_s).status);
    EXPECT_FALSE(flac::parseEncoding(u"x.wav: % complete"_s).status);
}

TEST(ProgramOutput, TakeWhatFollowsTheFirstColonForTheFigure)
{
    // A file name with ": " in it misleads the parser; kept.
    const ChunkReport report = flac::parseEncoding(u"Act 2: x.wav: 45% complete, ratio=0.532"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: x.wav% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 0.0);
}

TEST(ProgramOutput, ShowDecodingWithSixDecimals)
{
    const ChunkReport report = flac::parseDecoding(u"x.flac: 45% complete"_s);
    EXPECT_EQ(report.status, u"Decoding Flac: 45.000000%"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(flac::parseDecoding(u"\b\b86% complete"_s).progress, 86.0);
}

TEST(ProgramOutput, IgnoreADecodingFigureAtTheEndOfTheChunk)
{
    const ChunkReport report = flac::parseDecoding(u"x.flac: 45% \n"_s);
    EXPECT_FALSE(report.status);
    EXPECT_EQ(report.results, u"x.flac: 45%");
}

TEST(ProgramOutput, ShowShortenFiguresWithSixDecimals)
{
    EXPECT_EQ(shntool::parseToShorten(u"\b\b\b\b\b 45% "_s).status, u"Encoding to SHN: 45.000000%"_s);
    EXPECT_EQ(shntool::parseToShorten(u" 45% "_s).progress, 45.0);
    EXPECT_EQ(shntool::parseFromShorten(u"\b 7% \b"_s).status, u"Decoding SHN: 7.000000%"_s);
    EXPECT_EQ(shntool::parseFromShorten(u"\b 7% \b"_s).results, u" 7% ");
}

TEST(ProgramOutput, KeepTheDigitsAsShntoolWroteThemOnTheWayToFlac)
{
    const ChunkReport report = shntool::parseToFlac(u"\b\b\b\b\b  7% "_s, u"APE"_s);
    EXPECT_EQ(report.status, u"Encoding APE to Flac:   7%"_s);
    EXPECT_EQ(report.progress, 7.0);
}

TEST(ProgramOutput, ShowNoProgressForALineThatBeginsWithText)
{
    const ChunkReport report = shntool::parseToShorten(u"Converting [a.wav] (0:03.00) --> [a.shn] :  12% "_s);
    EXPECT_EQ(report.progress, 0.0);
    EXPECT_EQ(report.status, u"Encoding to SHN: 0.000000%"_s);
}

TEST(ProgramOutput, ReportShntoolLinesMoreThanOnce)
{
    EXPECT_EQ(shntool::parseToShorten(u"Converting [a.wav] : "_s).results, u"Converting [a.wav] Converting [a.wav] : ");
    EXPECT_EQ(shntool::parseToShorten(u"100% OK\n"_s).results, u"100% OK\n100% OK\n");
    EXPECT_EQ(shntool::parseToFlac(u"ERROR\n"_s, u"SHN"_s).results, u"ERROR\nERROR\n");
    EXPECT_EQ(shntool::parseToShorten(u"Converting [OK.wav]: x"_s).results,
              u"Converting [OK.wav]Converting [OK.wav]: xConverting [OK.wav]: x");
    EXPECT_EQ(shntool::parseToShorten(u"  5% "_s).results, u"  5% ");
    EXPECT_EQ(shntool::parseFromShorten(u"100% OK\n"_s).results, u"100% OK\n");
}

TEST(ProgramOutput, FollowRecordedRunsChunkByChunk)
{
    int figuresSeen = 0;
    for (const Recording &recording : recordings()) {
        SCOPED_TRACE(qPrintable(recording.name));
        const QList<QByteArray> chunks = test::transcriptChunks(recording.name);
        ASSERT_FALSE(chunks.isEmpty());
        for (const QByteArray &chunk : chunks) {
            const ChunkReport report = recording.parse(QString::fromUtf8(chunk));
            const QStringList figures = figuresIn(chunk);
            if (!report.status) {
                // A decoding figure counts only with a blank behind it.
                EXPECT_TRUE(figures.isEmpty() || chunk.trimmed().endsWith('%')) << chunk.constData();
                continue;
            }
            ASSERT_FALSE(figures.isEmpty()) << chunk.constData();
            EXPECT_TRUE(report.status->startsWith(recording.statusStart)) << qPrintable(*report.status);
            EXPECT_EQ(report.progress, figures.first().toDouble()) << chunk.constData();
            ++figuresSeen;
        }
    }
    EXPECT_GT(figuresSeen, 100);
}

TEST(ProgramOutput, ReportEverythingThatARecordedDecodingWrote)
{
    QString reported;
    QByteArray written;
    for (const QByteArray &chunk : test::transcriptChunks(u"shntool-conv-wav"_s)) {
        reported += shntool::parseFromShorten(QString::fromUtf8(chunk)).results;
        written += chunk;
    }
    EXPECT_EQ(reported.toUtf8().replace("\b", ""), written.replace("\b", ""));
}

TEST(ProgramOutput, SeeTheDamageThatARecordedDecodingTellsOf)
{
    EXPECT_TRUE(flac::tellsOfDamage(QString::fromUtf8(test::transcriptChunks(u"flac-1.5-cut"_s).join())));
    for (const QString &name : {u"flac-decode"_s, u"flac-1.5-decode"_s})
        EXPECT_FALSE(flac::tellsOfDamage(QString::fromUtf8(test::transcriptChunks(name).join()))) << qPrintable(name);
}

TEST(ProgramOutput, StandEveryCutOfARecordedRun)
{
    for (const Recording &recording : recordings()) {
        const QByteArray whole = test::transcriptChunks(recording.name).join();
        for (qsizetype cut = 0; cut <= whole.size(); ++cut) {
            for (const QByteArray &half : {whole.first(cut), whole.sliced(cut)}) {
                const ChunkReport report = recording.parse(QString::fromUtf8(half));
                ASSERT_EQ(report.status.has_value(), report.progress.has_value());
                if (!report.status)
                    continue;
                ASSERT_TRUE(report.status->startsWith(recording.statusStart)) << qPrintable(*report.status);
                ASSERT_GE(*report.progress, 0.0);
                ASSERT_TRUE(std::isfinite(*report.progress))
                    << "cut at " << cut << " of " << qPrintable(recording.name);
            }
        }
    }
}

TEST(ProgramOutput, LeavesOfOverwrittenFiguresWhatATerminalShows)
{
    EXPECT_EQ(programOutput::asOnATerminal(u"a: 1%\b\b2%\b\b3%\nb"), u"a: 3%\nb");
    EXPECT_EQ(programOutput::asOnATerminal(u"\b\b\bERROR\n\b\bx"), u"ERROR\nx");
    EXPECT_EQ(programOutput::asOnATerminal(u"1%\r2%\r\nend\r\n"), u"2%\nend\n");
    EXPECT_EQ(programOutput::asOnATerminal(u""), u"");
}

TEST(ProgramOutput, DrawsATableOverItselfAsATerminalDoes)
{
    EXPECT_EQ(programOutput::asOnATerminal(u"head\n 1%\x1b[K\n10 [*]\x1b[K\x1b[A\r 2%\x1b[K\n10 [**]\x1b[K\ndone\n"),
              u"head\n 2%\n10 [**]\ndone\n");
    EXPECT_EQ(programOutput::asOnATerminal(u"\x1b[A\x1b[Aa\x1b[0;31mb\x1b[m"), u"ab");
    EXPECT_EQ(programOutput::asOnATerminal(u"a\n\x1b[A\x1b[Ab"), u"ab");
    for (const QStringView cut : {u"a\x1b", u"a\x1b[", u"a\x1b[3", u"a\x1b[3;"})
        EXPECT_EQ(programOutput::asOnATerminal(cut), u"a");
}

} // namespace
} // namespace nurv
