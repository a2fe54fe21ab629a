// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ToolOutputParsers.h"

#include "convert/Transcript.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace Qt::StringLiterals;

namespace nurv::toolOutput {
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
        {u"flac-encode"_s, parseFlacEncoding, u"Encoding to Flac: "_s},
        {u"flac-encode-verify"_s, parseFlacEncoding, u"Encoding to Flac: "_s},
        {u"flac-decode"_s, parseFlacDecoding, u"Decoding Flac: "_s},
        {u"shntool-conv-wav"_s, parseShortenDecoding, u"Decoding SHN: "_s},
        {u"shntool-conv-wav"_s, parseShortenEncoding, u"Encoding to SHN: "_s},
        {u"shntool-conv-shn-no-encoder"_s, parseShortenEncoding, u"Encoding to SHN: "_s},
        {u"shntool-conv-flac"_s, [](const QString &chunk) { return parseFlacByShntool(chunk, u"SHN"_s); },
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

TEST(ToolOutputParsers, MakeAnEmptyLineOfBackspaces)
{
    const ChunkReport report = parseFlacEncoding(u"\b\b\b\b"_s);
    EXPECT_FALSE(report.status);
    EXPECT_FALSE(report.progress);
    EXPECT_EQ(report.results, QString());
    EXPECT_EQ(parseFlacDecoding(u"\b\b"_s).results, QString());
    EXPECT_EQ(parseShortenEncoding(u"\b\b"_s).results, QString());
}

TEST(ToolOutputParsers, ShowPercentAndRatioOfAFlacLine)
{
    const ChunkReport report = parseFlacEncoding(u"x.wav: 45% complete, ratio=0.532"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 45% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(report.results, u"x.wav: 45% complete, ratio=0.532");
}

TEST(ToolOutputParsers, ShowAFlacLineThatIsRewrittenInPlace)
{
    const ChunkReport report = parseFlacEncoding(u"\b\b\b\b46% complete, ratio=0.531\n"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 46% ratio=0.531"_s);
    EXPECT_EQ(report.progress, 46.0);
    EXPECT_EQ(report.results, u"46% complete, ratio=0.531");
}

TEST(ToolOutputParsers, CutASecondFigureOffTheRatio)
{
    const ChunkReport report = parseFlacEncoding(u"9% complete, ratio=0.53212% complete, ratio=0.540"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 9% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 9.0);
}

TEST(ToolOutputParsers, KeepASecondFigureBehindAFileName)
{
    const ChunkReport report = parseFlacEncoding(u"x.wav: 9% complete, ratio=0.53212% complete"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 9% ratio=0.53212% complete"_s);
}

TEST(ToolOutputParsers, ShowAPercentageWithoutARatio)
{
    const ChunkReport report = parseFlacEncoding(u"x.wav: 45% complete"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: 45% "_s);
    EXPECT_EQ(report.progress, 45.0);
}

TEST(ToolOutputParsers, CutTheRatioToNothingWhenThereIsNoRoomForTheFigure)
{
    // "ratio=" itself is longer than the two places, so nothing is cut below it.
    EXPECT_EQ(parseFlacEncoding(u"1% ratio=%"_s).status, u"Encoding to Flac: 1% rati"_s);
    EXPECT_EQ(parseFlacEncoding(u"1% ratio=2%"_s).status, u"Encoding to Flac: 1% ratio"_s);
}

TEST(ToolOutputParsers, LeaveTheStatusOfAFlacLineWithoutPercent)
{
    const ChunkReport report = parseFlacEncoding(u" x.wav: Verify OK, wrote 10 bytes, ratio=0.1\n"_s);
    EXPECT_FALSE(report.status);
    EXPECT_FALSE(report.progress);
    EXPECT_EQ(report.results, u"x.wav: Verify OK, wrote 10 bytes, ratio=0.1");
}

TEST(ToolOutputParsers, LeaveTheStatusWhenNothingStandsBeforeThePercentSign)
{
    EXPECT_FALSE(parseFlacEncoding(u"% complete"_s).status);
    EXPECT_FALSE(parseFlacEncoding(u"x.wav: % complete"_s).status);
}

TEST(ToolOutputParsers, TakeWhatFollowsTheFirstColonForTheFigure)
{
    // A file name with ": " in it misleads the parser; kept.
    const ChunkReport report = parseFlacEncoding(u"Act 2: x.wav: 45% complete, ratio=0.532"_s);
    EXPECT_EQ(report.status, u"Encoding to Flac: x.wav% ratio=0.532"_s);
    EXPECT_EQ(report.progress, 0.0);
}

TEST(ToolOutputParsers, ShowDecodingWithSixDecimals)
{
    const ChunkReport report = parseFlacDecoding(u"x.flac: 45% complete"_s);
    EXPECT_EQ(report.status, u"Decoding Flac: 45.000000%"_s);
    EXPECT_EQ(report.progress, 45.0);
    EXPECT_EQ(parseFlacDecoding(u"\b\b86% complete"_s).progress, 86.0);
}

TEST(ToolOutputParsers, IgnoreADecodingFigureAtTheEndOfTheChunk)
{
    const ChunkReport report = parseFlacDecoding(u"x.flac: 45% \n"_s);
    EXPECT_FALSE(report.status);
    EXPECT_EQ(report.results, u"x.flac: 45%");
}

TEST(ToolOutputParsers, ShowShortenFiguresWithSixDecimals)
{
    EXPECT_EQ(parseShortenEncoding(u"\b\b\b\b\b 45% "_s).status, u"Encoding to SHN: 45.000000%"_s);
    EXPECT_EQ(parseShortenEncoding(u" 45% "_s).progress, 45.0);
    EXPECT_EQ(parseShortenDecoding(u"\b 7% \b"_s).status, u"Decoding SHN: 7.000000%"_s);
    EXPECT_EQ(parseShortenDecoding(u"\b 7% \b"_s).results, u" 7% ");
}

TEST(ToolOutputParsers, KeepTheDigitsAsShntoolWroteThemOnTheWayToFlac)
{
    const ChunkReport report = parseFlacByShntool(u"\b\b\b\b\b  7% "_s, u"APE"_s);
    EXPECT_EQ(report.status, u"Encoding APE to Flac:   7%"_s);
    EXPECT_EQ(report.progress, 7.0);
}

TEST(ToolOutputParsers, ShowNoProgressForALineThatBeginsWithText)
{
    const ChunkReport report = parseShortenEncoding(u"Converting [a.wav] (0:03.00) --> [a.shn] :  12% "_s);
    EXPECT_EQ(report.progress, 0.0);
    EXPECT_EQ(report.status, u"Encoding to SHN: 0.000000%"_s);
}

TEST(ToolOutputParsers, ReportShntoolLinesMoreThanOnce)
{
    EXPECT_EQ(parseShortenEncoding(u"Converting [a.wav] : "_s).results, u"Converting [a.wav] Converting [a.wav] : ");
    EXPECT_EQ(parseShortenEncoding(u"100% OK\n"_s).results, u"100% OK\n100% OK\n");
    EXPECT_EQ(parseFlacByShntool(u"ERROR\n"_s, u"SHN"_s).results, u"ERROR\nERROR\n");
    EXPECT_EQ(parseShortenEncoding(u"Converting [OK.wav]: x"_s).results,
              u"Converting [OK.wav]Converting [OK.wav]: xConverting [OK.wav]: x");
    EXPECT_EQ(parseShortenEncoding(u"  5% "_s).results, u"  5% ");
    EXPECT_EQ(parseShortenDecoding(u"100% OK\n"_s).results, u"100% OK\n");
}

TEST(ToolOutputParsers, FollowRecordedRunsChunkByChunk)
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

TEST(ToolOutputParsers, ReportEverythingThatARecordedDecodingWrote)
{
    QString reported;
    QByteArray written;
    for (const QByteArray &chunk : test::transcriptChunks(u"shntool-conv-wav"_s)) {
        reported += parseShortenDecoding(QString::fromUtf8(chunk)).results;
        written += chunk;
    }
    EXPECT_EQ(reported.toUtf8().replace("\b", ""), written.replace("\b", ""));
}

TEST(ToolOutputParsers, StandEveryCutOfARecordedRun)
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

TEST(ToolOutputParsers, LeavesOfOverwrittenFiguresWhatATerminalShows)
{
    EXPECT_EQ(asOnATerminal(u"a: 1%\b\b2%\b\b3%\nb"), u"a: 3%\nb");
    EXPECT_EQ(asOnATerminal(u"\b\b\bERROR\n\b\bx"), u"ERROR\nx");
    EXPECT_EQ(asOnATerminal(u"1%\r2%\r\nend\r\n"), u"2%\nend\n");
    EXPECT_EQ(asOnATerminal(u""), u"");
}

} // namespace
} // namespace nurv::toolOutput
