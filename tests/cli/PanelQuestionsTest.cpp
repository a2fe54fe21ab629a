// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "PseudoTerminal.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

const QString kProgram = QString::fromLocal8Bit(NURV_PANEL_PROGRAM);

void expectRun(const QStringList &arguments, int exitStatus, const QByteArray &output, const QByteArray &errors = {})
{
    const ProgramResult result = runProgram(kProgram, arguments);
    EXPECT_EQ(result.exitStatus, exitStatus) << qPrintable(arguments.join(u' '));
    EXPECT_EQ(result.output, output) << qPrintable(arguments.join(u' '));
    EXPECT_EQ(result.errors, errors) << qPrintable(arguments.join(u' '));
}

/// A terminal on which a command of the program runs.
class Asked {
public:
    explicit Asked(const QStringList &arguments) : m_terminal(200, 24, kProgram, arguments) {}

    void expectQuestion(const QByteArray &question, const QByteArray &answer)
    {
        ASSERT_TRUE(m_terminal.waitFor(question)) << m_terminal.received().constData();
        m_terminal.type(answer);
    }
    void expectEnd(int exitStatus, const QByteArray &output)
    {
        EXPECT_EQ(m_terminal.finish(), exitStatus) << m_terminal.received().constData();
        EXPECT_TRUE(m_terminal.received().endsWith(output)) << m_terminal.received().constData();
    }

private:
    PseudoTerminal m_terminal;
};

} // namespace

TEST(PanelQuestions, OptionsAnswerEveryKindOfControl)
{
    expectRun({u"prefix"_s, u"--prefix"_s, u"gd77"_s}, 0, "gd77\n");
    expectRun({u"trim"_s, u"--number=12"_s, u"--position=END"_s}, 0, "12\n1\n");
    expectRun({u"tags"_s, u"--custom"_s, u"TAPER=Anna"_s, u"--custom"_s, u"EQUATION=a=b"_s}, 0,
              "TAPER is Anna\nEQUATION is a=b\n is \n is \n is \n is \n is \n is \n");
    expectRun({u"names"_s, u"--names"_s, u"Intro"_s, u"--names"_s, u"Song"_s}, 0, "Intro\nSong\n");
    expectRun({u"options"_s, u"--on"_s, u"--level=8"_s}, 0, "on\n8\n");
    expectRun({u"options"_s, u"--level=0"_s}, 0, "off\n0\n");
}

TEST(PanelQuestions, TheStandardOfAnOptionAnswersToo)
{
    expectRun({u"trim"_s, u"start"_s, u"--number"_s, u"3"_s}, 0, "3\n1\n");
}

TEST(PanelQuestions, WithoutATerminalTheOptionsThatAreMissingAreNamed)
{
    expectRun({u"prefix"_s}, 2, "",
              "nurv: --prefix is needed, since there is no terminal to ask on: Batch Rename\n");
    expectRun({u"trim"_s}, 2, "",
              "nurv: --number and --position are needed, since there is no terminal to ask on: Remove Characters\n");
    expectRun({u"trim"_s, u"--position=start"_s}, 2, "",
              "nurv: --number is needed, since there is no terminal to ask on: Remove Characters\n");
    expectRun({u"points"_s}, 2, "",
              "nurv: --points is needed, since there is no terminal to ask on: Choose file with split point data\n");
}

TEST(PanelQuestions, AWordThatDoesNotFitIsToldWithItsOption)
{
    expectRun({u"prefix"_s, u"--prefix=a/b"_s}, 2, "", "nurv: --prefix: A prefix with a slash would name a folder.\n");
    expectRun({u"trim"_s, u"--number=100"_s, u"--position=end"_s}, 2, "",
              "nurv: --number takes a whole number from 0 to 99, not \"100\"\n");
    expectRun({u"trim"_s, u"--number=x"_s, u"--position=end"_s}, 2, "",
              "nurv: --number takes a whole number from 0 to 99, not \"x\"\n");
    expectRun({u"trim"_s, u"--number=1"_s, u"--position=left"_s}, 2, "",
              "nurv: --position takes start or end, not \"left\"\n");
    expectRun({u"tags"_s, u"--custom"_s, u"=x"_s}, 2, "", "nurv: --custom takes NAME=VALUE, not \"=x\"\n");
    QStringList nine{u"tags"_s};
    for (int row = 0; row < 9; ++row)
        nine << u"--custom"_s << u"A=B"_s;
    expectRun(nine, 2, "", "nurv: --custom can be given 8 times at most, not 9 times\n");
}

TEST(PanelQuestions, TheTerminalIsAskedForWhatIsMissing)
{
    Asked user({u"trim"_s, u"--position"_s, u"end"_s});
    user.expectQuestion("nurv: Remove Characters (Ctrl-D cancels)\r\n"
                        "Number of characters [a whole number from 0 to 99, default 0]: ",
                        "many\n");
    user.expectQuestion("nurv: Number of characters takes a whole number from 0 to 99, not \"many\"\r\n"
                        "Number of characters [a whole number from 0 to 99, default 0]: ",
                        "4\n");
    user.expectEnd(0, "4\r\n1\r\n");
}

TEST(PanelQuestions, EnterAloneKeepsAValueThatNothingObjectsTo)
{
    Asked trim({u"trim"_s});
    trim.expectQuestion("Number of characters [a whole number from 0 to 99, default 0]: ", "\n");
    trim.expectQuestion("From the [start or end, default start]: ", "\n");
    trim.expectEnd(0, "0\r\n0\r\n");

    Asked prefix({u"prefix"_s});
    prefix.expectQuestion("Batch Rename: Enter the Prefix that you want the files to start with: (Ctrl-D cancels)\r\nPrefix: ",
                          "\n");
    prefix.expectQuestion("nurv: Type what the names are to start with.\r\nPrefix: ", "a b\n");
    prefix.expectEnd(0, "a b\r\n");
}

TEST(PanelQuestions, RowsAndLinesAreTypedOneAfterTheOther)
{
    Asked tags({u"tags"_s});
    tags.expectQuestion("custom [NAME=VALUE, one a line, Enter alone ends]: ", "TAPER\n\n");
    tags.expectQuestion("nurv: custom takes NAME=VALUE, not \"TAPER\"", "TAPER=Anna\nSOURCE=SBD\n\n");
    tags.expectEnd(0, "TAPER is Anna\r\nSOURCE is SBD\r\n is \r\n is \r\n is \r\n is \r\n is \r\n is \r\n");

    Asked names({u"names"_s});
    names.expectQuestion("Names [one a line, Enter alone ends]: ", "Intro\nSong\n\n");
    names.expectEnd(0, "Intro\r\nSong\r\n");
}

TEST(PanelQuestions, TheEndOfTheInputDismissesAPanel)
{
    Asked declined({u"trim"_s});
    declined.expectQuestion("default 0]: ", "3\n");
    declined.expectQuestion("default start]: ", "\x04");
    declined.expectEnd(1, "\r\n");
    Asked atOnce({u"prefix"_s});
    atOnce.expectQuestion("Prefix: ", "\x04");
    atOnce.expectEnd(1, "\r\n");
}

TEST(PanelQuestions, AnOptionNamesTheFileOfAChooser)
{
    const TestFolder folder;
    const QString cue = folder.write(u"a.CUE"_s, "x");
    const QString wav = folder.write(u"a.wav"_s, "x");
    folder.makeFolder(u"b.cue"_s);
    expectRun({u"points"_s, u"--points"_s, cue}, 0, cue.toUtf8() + '\n');
    expectRun({u"points"_s, u"--points"_s, wav}, 2, "",
              "nurv: --points: " + wav.toUtf8() + ": not a file of the kind that is needed (cue, txt)\n");
    expectRun({u"points"_s, u"--points"_s, folder.path(u"no.txt"_s)}, 2, "",
              "nurv: --points: " + folder.path(u"no.txt"_s).toUtf8() + ": No such file or directory\n");
    expectRun({u"points"_s, u"--points"_s, folder.path(u"b.cue"_s)}, 2, "",
              "nurv: --points: " + folder.path(u"b.cue"_s).toUtf8() + ": it is no regular file\n");
    expectRun({u"pictures"_s, u"--picture"_s, wav, u"--picture"_s, cue}, 0, (wav + u'\n' + cue + u'\n').toUtf8());
}

TEST(PanelQuestions, TheTerminalIsAskedForAFileUntilItIsOne)
{
    const TestFolder folder;
    const QByteArray cue = folder.write(u"a.cue"_s, "x").toUtf8();
    Asked one({u"points"_s});
    one.expectQuestion("Choose file with split point data [Enter alone: cancel]: ", cue + "x\n");
    one.expectQuestion(": No such file or directory\r\nChoose file", cue + '\n');
    one.expectEnd(0, cue + "\r\n");
    Asked none({u"points"_s});
    none.expectQuestion("cancel]: ", "\n");
    none.expectEnd(1, "\r\n");
    Asked two({u"pictures"_s});
    two.expectQuestion("Choose pictures [Enter alone: cancel]: ", cue + '\n');
    two.expectQuestion("Choose pictures [Enter alone: no more]: ", "\n");
    two.expectEnd(0, cue + "\r\n");
}

TEST(PanelQuestions, AFileIsReplacedOnlyWhenTheUserAgrees)
{
    const TestFolder folder;
    const QString fresh = folder.path(u"new.cue"_s);
    expectRun({u"save"_s, u"--output"_s, fresh}, 0, fresh.toUtf8() + '\n');
    EXPECT_FALSE(folder.exists(u"new.cue"_s)) << "asking makes no file";

    const QString old = folder.write(u"old.cue"_s, "x");
    const QByteArray question = old.toUtf8() + " exists already. Do you want to replace it?";
    expectRun({u"save"_s, u"--output"_s, old}, 2, "",
              "nurv: " + question + " Answered \"No\", since there is no terminal to ask on; --yes answers \"Yes\".\n");
    expectRun({u"save"_s, u"--output"_s, old, u"--no"_s}, 1, "", "nurv: " + question + " Answered \"No\".\n");
    expectRun({u"save"_s, u"--output"_s, old, u"--yes"_s}, 0, old.toUtf8() + '\n');
    expectRun({u"save"_s, u"--output"_s, old, u"--overwrite"_s}, 0, old.toUtf8() + '\n');
    // What a link leads to counts like a file, also when that is gone.
    folder.makeLink(u"link.cue"_s, folder.path(u"gone"_s));
    expectRun({u"save"_s, u"--output"_s, folder.path(u"link.cue"_s), u"--no"_s}, 1, "",
              "nurv: " + folder.path(u"link.cue"_s).toUtf8()
                  + " exists already. Do you want to replace it? Answered \"No\".\n");

    Asked user({u"save"_s});
    user.expectQuestion("Save CUE sheet as [Enter alone: cancel]: ", old.toUtf8() + '\n');
    user.expectQuestion("replace it? [No/Yes, default No] ", "y\n");
    user.expectEnd(0, old.toUtf8() + "\r\n");
}

TEST(PanelQuestions, AFileIsNotSavedWhereNoneCanBe)
{
    const TestFolder folder;
    expectRun({u"save"_s, u"--output"_s, folder.path()}, 2, "",
              "nurv: --output: " + folder.path().toUtf8() + ": it is a folder\n");
    expectRun({u"save"_s, u"--output"_s, folder.path(u"none/a.cue"_s)}, 2, "",
              "nurv: --output: the output folder does not exist: " + folder.path(u"none"_s).toUtf8() + '\n');
}
