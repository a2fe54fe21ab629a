// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/FixOrder.h"
#include "programs/Shntool.h"
#include "programs/Transcript.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(ShntoolFix, IsOneRunOverAllSources)
{
    const QStringList sources{u"/in/a.wav"_s, u"/in/b.flac"_s};
    const QStringList fixed{u"fix"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"never"_s, u"-k"_s, u"-d"_s, u"/out"_s, u"-o"_s};
    for (const QString &format : {u"shn"_s, u"flac"_s, u"aiff"_s, u"wav"_s})
        EXPECT_EQ(shntool::fixArguments(format, 8, u"/out"_s, sources), fixed + QStringList(format) + sources);
    const QStringList encoder{u"cust"_s, u"ext=flac"_s, u"{"_s, u"flac"_s, u"-s"_s, u"-8"_s,
                              u"-o"_s,   u"%f"_s,       u"-"_s, u"}"_s};
    EXPECT_EQ(shntool::fixArguments(u"FLAC"_s, 8, u"/out"_s, sources), fixed + encoder + sources);
}

TEST(ShntoolFix, NamesWhatItMakesByWhatItFinds)
{
    EXPECT_EQ(shntool::fixedNames(u"/in/a.b.wav"_s, u"flac"_s), (QStringList{u"a.b-fixed.flac"_s, u"a.b.wav-fixed.flac"_s}));
    EXPECT_EQ(shntool::fixedNames(u"/in/a.WAV"_s, u"FLAC"_s), QStringList{u"a.WAV-fixed.flac"_s});
    EXPECT_EQ(shntool::fixedNames(u"/in/a.aif"_s, u"aiff"_s), QStringList{u"a.aif-fixed.aiff"_s});
    EXPECT_EQ(shntool::fixedNames(u"/in/a"_s, u"wav"_s), QStringList{u"a-fixed.wav"_s});
}

TEST(ShntoolFix, ShowsTheFileOfALine)
{
    EXPECT_EQ(shntool::parseFixing(u"Fixing [/in/show d1.t01.wav] (1:00.00) --> [/out/x.flac] :   0% "_s).fileName, u"show d1.t01");
    EXPECT_EQ(shntool::parseFixing(u"Fixing [/in/a.wav"_s).fileName, u"a") << "as far as it goes";
    EXPECT_EQ(shntool::parseFixing(u"] (1:00.00) --> [/out/b-fixed.flac] (x"_s).fileName, u"b-fixed");
    EXPECT_FALSE(shntool::parseFixing(u"\b\b\b\b\b  7% "_s).fileName);
    EXPECT_FALSE(shntool::parseFixing(u"No padding needed.\n"_s).fileName);
}

TEST(ShntoolFix, ShowsTheNumberBeforeTheFirstPercent)
{
    EXPECT_EQ(shntool::parseFixing(u"Fixing [/in/a.wav] (1:00.00) --> [/out/x.flac] :   0% "_s).progress, 0.0);
    EXPECT_EQ(shntool::parseFixing(u"\b\b\b\b\b  7% \b\b\b\b\b  8% "_s).progress, 7.0);
    EXPECT_EQ(shntool::parseFixing(u"100% OK\n"_s).progress, 100.0);
    EXPECT_EQ(shntool::parseFixing(u"%"_s).progress, 0.0) << "no number is 0";
    EXPECT_FALSE(shntool::parseFixing(u"OK\n"_s).progress);
    EXPECT_FALSE(shntool::parseFixing(u""_s).progress);
}

TEST(ShntoolFix, ReportsTextWithoutPercent)
{
    EXPECT_EQ(shntool::parseFixing(u"\b\bx\b 12% y\b"_s).text, u"x\b  y");
    EXPECT_EQ(shntool::parseFixing(u"a 50% b 100%%"_s).text, u"a  b %");
    EXPECT_EQ(shntool::parseFixing(u"% 5 %"_s).text, u"% 5 %") << "a figure stands right before it";
    EXPECT_EQ(shntool::parseFixing(u"\b\b"_s).text, QString());
}

TEST(ShntoolFix, FollowsARecordedRun)
{
    const QStringList sources{u"show-d1t01.flac"_s, u"show-d1t02.flac"_s, u"show-d1t03.flac"_s};
    QString text;
    QStringList names;
    QList<double> shown;
    QList<double> expected;
    static const QRegularExpression figure(u"(\\d+)%"_s);
    FixOrder order(sources);
    for (const QByteArray &chunk : test::transcriptChunks(u"shntool-fix"_s)) {
        const QString piece = QString::fromUtf8(chunk);
        const shntool::FixReport report = shntool::parseFixing(piece);
        text += report.text;
        if (report.fileName)
            names.append(*report.fileName);
        if (report.progress)
            shown.append(*report.progress);
        // By other means than the parser's.
        if (const auto match = figure.match(piece); match.hasMatch())
            expected.append(match.captured(1).toDouble());
        static_cast<void>(order.take(piece));
    }
    EXPECT_EQ(names, (QStringList{u"show-d1t01"_s, u"show-d1t02"_s, u"show-d1t03"_s}));
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(shown.last(), 100.0);
    EXPECT_FALSE(text.contains(u'%'));
    EXPECT_TRUE(text.endsWith(u"No padding needed.\n"_s));
    EXPECT_EQ(order.order(), (QList<qsizetype>{0, 1, 2}));
}

TEST(ShntoolFix, FindsTheOrderHoweverTheOutputIsCut)
{
    const QStringList sources{u"/in/c.wav"_s, u"/in/a] (b.wav"_s, u"/in/Fixing [x] (y.wav"_s, u"/in/n\nl.wav"_s};
    QString output;
    for (const qsizetype place : {2, 1, 3, 0}) {
        const QString name = sources.at(place);
        output += u"Fixing [%1] (0:01.00) --> [/out/%2] :   0% \b\b\b\b\b100% OK\n"_s.arg(name, name.sliced(4));
    }
    for (const qsizetype step : {qsizetype{1}, qsizetype{3}, qsizetype{17}, output.size()}) {
        FixOrder order(sources);
        QList<qsizetype> begun;
        for (qsizetype at = 0; at < output.size(); at += step)
            begun += order.take(QStringView(output).sliced(at).left(step));
        EXPECT_EQ(begun, (QList<qsizetype>{2, 1, 3, 0})) << step;
        EXPECT_EQ(order.order(), begun);
    }
}

TEST(ShntoolFix, KnowsNoOrderWithoutEverySource)
{
    FixOrder order({u"/in/a.wav"_s, u"/in/b.wav"_s});
    EXPECT_EQ(order.take(u"Fixing [/in/b.wav] (0:01.00) --> [/out/b.wav] :   0% OK\n"_s), QList<qsizetype>{1});
    EXPECT_EQ(order.order(), std::nullopt);
    EXPECT_EQ(order.take(u"Fixing [/in/b.wav] (0:01.00) --> [/out/b.wav] :   0% OK\n"_s), QList<qsizetype>()) << "once";
    EXPECT_EQ(order.take(u"Fixing ["_s + QString(100'000, u'x')), QList<qsizetype>());
    EXPECT_EQ(order.take(u"Fixing [/in/a.wav] (0:01.00) --> [/out/b.wav] :   0% OK\n"_s), QList<qsizetype>{0});
    EXPECT_EQ(order.order(), (QList<qsizetype>{1, 0}));
}

TEST(ShntoolFix, SaysWhyItFailed)
{
    EXPECT_EQ(shntool::reasonOfFailedFixing(u"shntool [fix]: error: everything seems fine, no need for fixing\n"_s),
              u"everything seems fine, no need for fixing");
    EXPECT_EQ(shntool::reasonOfFailedFixing(u"shntool [fix]: warning: file is not CD-quality: [a.wav]\n"
                                            "shntool [fix]: warning: file is not CD-quality: [b.wav]\n"
                                            "shntool [fix]: error: could not fix files due to errors, see above\n"_s),
              u"file is not CD-quality: [a.wav]");
    EXPECT_EQ(shntool::reasonOfFailedFixing(u"Fixing [a] (x) --> [y] : ERROR\nshntool [fix]: warning: could not complete\n"
                                            "shntool [fix]: error: failed to fix files\n"_s),
              u"could not complete");
    EXPECT_EQ(shntool::reasonOfFailedFixing(u"something else"_s), QString());
}

TEST(ShntoolFix, StartsWhatSourcesAndFormatNeed)
{
    const QStringList sources{u"/nowhere/a.wav"_s, u"/nowhere/b.wav"_s};
    const auto started = [&](const QString &format) {
        return shntool::startedBy(shntool::fixArguments(format, 4, u"/out"_s, sources));
    };
    EXPECT_EQ(started(u"wav"_s), QStringList());
    EXPECT_EQ(started(u"flac"_s), QStringList{u"flac"_s});
    EXPECT_EQ(started(u"shn"_s), QStringList{u"shorten"_s});
    EXPECT_EQ(started(u"aiff"_s), QStringList{u"sox"_s});
}

} // namespace
} // namespace nurv
