// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CommandTree.h"

#include "base/NurvFailure.h"
#include "cli/CompletionScript.h"
#include "cli/Console.h"
#include "cli/HelpText.h"
#include "cli/ManualOptions.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace nurv {
namespace {

class ExampleCommand final : public Command {
public:
    explicit ExampleCommand(CommandSpec spec) : m_spec(std::move(spec)) {}
    [[nodiscard]] const CommandSpec &spec() const override { return m_spec; }
    [[nodiscard]] ExitStatus run(const ParsedArguments &, Console &) const override { return ExitStatus::Ok; }

private:
    CommandSpec m_spec;
};

/// "list", "checksum create" and "checksum verify".
class CommandTreeTest : public ::testing::Test {
protected:
    [[nodiscard]] QString taken(QList<QByteArray> words) const
    {
        const Command *const command = tree.take(words);
        return command ? command->spec().name + u": "_s + QString::fromUtf8(words.join(' ')) : QString();
    }
    /// What a shell offers for the last word, sorted.
    [[nodiscard]] QStringList offered(const QString &shell, const QStringList &arguments) const
    {
        const ProgramResult result = runProgram(shell, arguments);
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        QStringList lines;
        for (const QByteArray &line : result.output.split('\n')) {
            if (!line.isEmpty())
                lines.append(QString::fromUtf8(line).section(u'\t', 0, 0));
        }
        lines.sort();
        return lines;
    }
    [[nodiscard]] QStringList offeredByFish(const QString &line) const
    {
        const QString script = folder.write(u"nurv.fish"_s, fishCompletion(tree).toUtf8());
        return offered(u"fish"_s, {u"--no-config"_s, u"-c"_s, u"source $argv[1]; complete -C $argv[2]"_s, script, line});
    }
    [[nodiscard]] QStringList offeredByBash(const QStringList &words) const
    {
        const QString script = folder.write(u"nurv.bash"_s, bashCompletion(tree).toUtf8());
        return offered(u"bash"_s, QStringList{u"--norc"_s, u"-c"_s,
                                              u"source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                                              "_nurv; printf '%s\\n' \"${COMPREPLY[@]}\""_s,
                                              u"bash"_s, script}
                                      + words);
    }

    const ExampleCommand list{{.name = u"list"_s,
                               .summary = u"tell what there is"_s,
                               .takesPaths = false,
                               .options = {{.name = u"help"_s, .summary = u"this text"_s, .manual = u"Tells --help."_s}}}};
    const ExampleCommand create{
        {.name = u"checksum create"_s,
         .summary = u"write lists"_s,
         .options = {{.name = u"kind"_s,
                      .valueName = u"KIND"_s,
                      .summary = u"of [the] list: md5"_s,
                      .manual = u"What is *written* to _the list_."_s,
                      .choices = {u"md5"_s, u"ffp"_s, u"st5"_s}},
                     {.name = u"help"_s, .summary = u"this text"_s, .manual = u"Tells --help."_s}}}};
    const ExampleCommand verify{
        {.name = u"checksum verify"_s,
         .summary = u"check lists, it's quick"_s,
         .options = {{.name = u"strict"_s, .summary = u"no extra files"_s, .manual = u".Extra files count."_s},
                     {.name = u"help"_s, .summary = u"this text"_s, .manual = u"Tells --help."_s}}}};
    const CommandTree tree{{&list, &create, &verify}};
    TestFolder folder;
};

TEST_F(CommandTreeTest, TakesCommandsOfOneWordAndOfTwo)
{
    EXPECT_EQ(taken({"list", "--help"}), u"list: --help"_s);
    EXPECT_EQ(taken({"checksum", "verify", "a.md5", "--strict"}), u"checksum verify: a.md5 --strict"_s);
    EXPECT_EQ(taken({"checksum", "create"}), u"checksum create: "_s);
    EXPECT_EQ(taken({"checksum"}), QString());
    EXPECT_EQ(taken({"checksum", "--strict", "verify"}), QString());
    EXPECT_EQ(taken({"checksum verify"}), QString()) << "one word that has a blank is another word";
    EXPECT_EQ(taken({"verify"}), QString());
    EXPECT_EQ(tree.firstWords(), (QStringList{u"list"_s, u"checksum"_s}));
}

TEST_F(CommandTreeTest, ListsAGroupInItsHelp)
{
    EXPECT_TRUE(tree.group(u"list"_s).empty());
    const QString help = groupHelp(u"checksum"_s, tree.group(u"checksum"_s));
    EXPECT_TRUE(help.startsWith(u"Usage: nurv checksum COMMAND "_s)) << qPrintable(help);
    EXPECT_TRUE(help.contains(u"  checksum create   write lists\n  checksum verify   check lists, it's quick\n"_s))
        << qPrintable(help);
    EXPECT_TRUE(generalHelp(tree).contains(u"  list              tell what there is\n"_s)) << qPrintable(generalHelp(tree));
}

TEST_F(CommandTreeTest, WordsOfACommandAreCompletedAndStandInTheManualPage)
{
    const ExampleCommand keys{{.name = u"settings"_s,
                               .summary = u"tell and keep"_s,
                               .takesPaths = false,
                               .words = {{.word = u"colour"_s,
                                          .summary = u"of the ink"_s,
                                          .manual = u"The _colour_ of the ink."_s,
                                          .values = {u"red"_s, u"blue"_s}},
                                         {.word = u"title"_s, .summary = u"any text"_s, .manual = u"Any text."_s}},
                               .options = {{.name = u"help"_s, .summary = u"this text"_s, .manual = u"Tells --help."_s}}}};
    const CommandTree own{{&keys}};
    const QString script = folder.write(u"words.bash"_s, bashCompletion(own).toUtf8());
    const auto offeredFor = [&](const QStringList &words) {
        return offered(u"bash"_s, QStringList{u"--norc"_s, u"-c"_s,
                                              u"source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                                              "_nurv; printf '%s\\n' \"${COMPREPLY[@]}\""_s,
                                              u"bash"_s, script}
                                      + words);
    };
    EXPECT_EQ(offeredFor({u"nurv"_s, u"settings"_s, u""_s}), (QStringList{u"colour"_s, u"title"_s}));
    EXPECT_EQ(offeredFor({u"nurv"_s, u"settings"_s, u"colour"_s, u""_s}), (QStringList{u"blue"_s, u"red"_s}));
    EXPECT_EQ(offeredFor({u"nurv"_s, u"settings"_s, u"title"_s, u"r"_s}), QStringList());
    EXPECT_EQ(offeredFor({u"nurv"_s, u"settings"_s, u"--h"_s}), QStringList{u"--help"_s});
    EXPECT_EQ(manualPage(u"@words settings@\n@options settings@"_s, own),
              u".TP\n.B colour\nThe \\fIcolour\\fR of the ink.\n.TP\n.B title\nAny text.\n"
              ".TP\n.B \\-\\-help\nTells \\fB\\-\\-help\\fR.\n"_s.chopped(1));
    EXPECT_THROW(static_cast<void>(manualPage(u"@words list@"_s, own)), NurvFailure);
}

TEST_F(CommandTreeTest, IsCompletedByBash)
{
    EXPECT_EQ(offeredByBash({u"nurv"_s, u""_s}),
              (QStringList{u"--help"_s, u"--version"_s, u"checksum"_s, u"list"_s}));
    EXPECT_EQ(offeredByBash({u"nurv"_s, u"checksum"_s, u"v"_s}), QStringList{u"verify"_s});
    EXPECT_EQ(offeredByBash({u"nurv"_s, u"checksum"_s, u"create"_s, u"--kind"_s, u""_s}),
              (QStringList{u"ffp"_s, u"md5"_s, u"st5"_s}));
    EXPECT_EQ(offeredByBash({u"nurv"_s, u"checksum"_s, u"verify"_s, u"--"_s}),
              (QStringList{u"--help"_s, u"--strict"_s}));
}

TEST_F(CommandTreeTest, IsCompletedByFish)
{
    EXPECT_EQ(offeredByFish(u"nurv "_s), (QStringList{u"checksum"_s, u"list"_s}));
    EXPECT_EQ(offeredByFish(u"nurv checksum "_s), (QStringList{u"create"_s, u"verify"_s}));
    EXPECT_EQ(offeredByFish(u"nurv checksum create --kind "_s), (QStringList{u"ffp"_s, u"md5"_s, u"st5"_s}));
    EXPECT_EQ(offeredByFish(u"nurv checksum verify --s"_s), QStringList{u"--strict"_s});
}

TEST_F(CommandTreeTest, IsCompletedByZsh)
{
    folder.write(u"_nurv"_s, zshCompletion(tree).toUtf8());
    // The completion runs in a terminal of its own, which tells what is shown.
    const QString script = u"zmodload zsh/zpty; zpty z zsh -f -i; "
                           "zpty -w z \"PS1=; fpath=($1 \\$fpath); autoload -U compinit; compinit -u -D; echo is''ready\"; "
                           "zpty -r -m z shown '*isready*'; zpty -w -n z \"$2\"$'\\t'; zpty -r -m z shown \"*$3*\" && "
                           "print -r -- $shown"_s;
    const auto shows = [&](const QString &line, const QString &wanted) {
        const ProgramResult result =
            runProgram(u"zsh"_s, {u"-f"_s, u"-c"_s, script, u"zsh"_s, folder.path(), line, wanted});
        return result.output.contains(wanted.toUtf8());
    };
    EXPECT_TRUE(shows(u"nurv checksum v"_s, u"verify"_s));
    EXPECT_TRUE(shows(u"nurv checksum verify --st"_s, u"--strict"_s));
    EXPECT_TRUE(shows(u"nurv checksum create --kind=m"_s, u"--kind=md5"_s));
}

TEST_F(CommandTreeTest, FillsAManualPage)
{
    const QString page = u"start\n@options checksum create@\nmiddle\n@options checksum verify@\n@options common@\nend\n"_s;
    EXPECT_EQ(manualPage(page, tree),
              u"start\n"
              ".TP\n.BI \\-\\-kind \" md5|ffp|st5\"\nWhat is \\fBwritten\\fR to \\fIthe list\\fR.\n"
              "middle\n"
              ".TP\n.B \\-\\-strict\n\\&.Extra files count.\n"
              ".TP\n.B \\-\\-help\nTells \\fB\\-\\-help\\fR.\n"
              "end\n"_s);
    EXPECT_THROW(static_cast<void>(manualPage(u"@options checksum create@\n"_s, tree)), NurvFailure)
        << "options without a place";
    EXPECT_THROW(static_cast<void>(manualPage(page + u"@options cheksum@\n"_s, tree)), NurvFailure);
}

} // namespace
} // namespace nurv
