// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "PseudoTerminal.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// What stands on the screen in the end, one text a line, for the few things that
/// the program sends: text, line ends, "up N lines" and "erase to the end".
QList<QByteArray> screenAfter(const QByteArray &received)
{
    QList<QByteArray> lines{QByteArray()};
    qsizetype row = 0;
    for (qsizetype i = 0; i < received.size(); ++i) {
        const char byte = received[i];
        if (byte == '\n') {
            if (++row == lines.size())
                lines.append(QByteArray());
        } else if (byte == '\r') {
            // The program writes whole lines only.
        } else if (byte == '\033') {
            qsizetype end = i + 2;
            while (end < received.size() && received[end] >= '0' && received[end] <= '9')
                ++end;
            const int number = received.mid(i + 2, end - i - 2).toInt();
            if (received[end] == 'A') {
                row -= number;
                EXPECT_GE(row, 0) << "moved above the first line";
            } else {
                EXPECT_EQ(received[end], 'J');
                lines.resize(row + 1);
                lines[row].clear();
            }
            i = end;
        } else {
            lines[row] += byte;
        }
    }
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

TEST(Terminal, ShowsALiveLinePerRunningJobAndTakesItAway)
{
    const TestFolder folder;
    folder.write(u"a.wav"_s, "x");
    folder.write(u"b.wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "append=@-1:x;out=x.wav: 45% complete, ratio=0.532;wait-file=" + folder.path(u"go"_s).toUtf8());
    PseudoTerminal terminal(80, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, u"--jobs=1"_s, folder.path()});
    EXPECT_TRUE(terminal.waitFor(" 45%  a.wav  Encoding to Flac: 45% ratio=0.532")) << terminal.received().constData();
    EXPECT_TRUE(terminal.waitFor("0 of 2 ended, 1 running"));
    folder.write(u"go"_s, "");
    EXPECT_EQ(terminal.finish(), 0);
    QList<QByteArray> screen = screenAfter(terminal.received());
    EXPECT_TRUE(screen.takeLast().startsWith("2 of 2 done, 2 not proven; ")) << terminal.received().constData();
    EXPECT_EQ(screen, (QList<QByteArray>{"a.wav: Complete; not proven", "b.wav: Complete; not proven"}));
}

TEST(Terminal, ALongWideNameStaysWithinTheWidth)
{
    const TestFolder folder;
    folder.write(u"曲"_s.repeated(60) + u".wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "append=@-1:x;out=x.wav: 45% complete, ratio=0.532;wait-file=" + folder.path(u"go"_s).toUtf8());
    PseudoTerminal terminal(40, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, folder.path()});
    ASSERT_TRUE(terminal.waitFor("0 of 1 ended, 1 running"));
    ASSERT_TRUE(terminal.waitFor(" 45%  "));
    const qsizetype start = terminal.received().lastIndexOf(" 45%  ");
    const QByteArray line = terminal.received().mid(start).split('\r').first();
    folder.write(u"go"_s, "");
    EXPECT_EQ(terminal.finish(), 0);
    const QString text = QString::fromUtf8(line);
    EXPECT_TRUE(text.contains(u'…')) << line.constData();
    EXPECT_LE(text.size() + text.count(u'曲'), 39) << line.constData();
}

TEST(Terminal, ANameCannotGiveTheTerminalOrders)
{
    const TestFolder folder;
    folder.write(u"a\x1b[2Jb.wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "exit=1");
    PseudoTerminal terminal(80, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_FALSE(terminal.received().contains("\x1b[2J"));
    EXPECT_TRUE(terminal.received().contains("a\\x1B[2Jb.wav: it failed without a reason"));
}

TEST(Terminal, JsonOfANameCannotGiveTheTerminalOrders)
{
    const TestFolder folder;
    const QString name = u"a\u009b2Jb\u202Evaw.wav"_s;
    folder.write(name, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "exit=1");
    const QStringList arguments{u"encode"_s, u"--json"_s, u"--beside-source"_s, folder.path()};
    PseudoTerminal terminal(80, 24, nurvPath(), arguments);
    EXPECT_EQ(terminal.finish(), 1);
    EXPECT_FALSE(terminal.received().contains("\xC2\x9B"));
    EXPECT_FALSE(terminal.received().contains("\xE2\x80\xAE"));

    const ProgramResult piped = runNurv(arguments);
    EXPECT_FALSE(piped.output.contains("\xC2\x9B"));
    EXPECT_FALSE(piped.output.contains("\xE2\x80\xAE"));
    EXPECT_TRUE(piped.output.contains("a\\u009b2Jb\\u202evaw.wav")) << piped.output.constData();
    EXPECT_EQ(jsonLines(piped.output).first().value(u"source"_s).toString(), folder.path(name));
}

TEST(Terminal, CtrlCOnTheKeyboardCancelsAndTheScreenIsLeftClean)
{
    const TestFolder folder;
    folder.write(u"a.wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "append=@-1:x;out=x.wav: 45% complete, ratio=0.532;hang");
    PseudoTerminal terminal(80, 24, nurvPath(), {u"encode"_s, u"--beside-source"_s, folder.path()});
    ASSERT_TRUE(terminal.waitFor("Encoding to Flac: 45%"));
    terminal.type("\x03");
    ASSERT_TRUE(terminal.waitFor("Ctrl-C again ends it now"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.finish(), 130);
    QList<QByteArray> screen = screenAfter(terminal.received());
    EXPECT_TRUE(screen.takeLast().startsWith("0 of 1 done, 1 canceled; "));
    EXPECT_EQ(screen.last(), "a.wav: Canceled") << terminal.received().constData();
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(Terminal, QuietShowsNothing)
{
    const TestFolder folder;
    folder.write(u"a.wav"_s, "x");
    const ProgramFolder tools;
    tools.addFake(u"flac"_s, "append=@-1:x;delay=300");
    PseudoTerminal terminal(80, 24, nurvPath(), {u"encode"_s, u"--quiet"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_EQ(terminal.received(), "");
}
