// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NSTaskWrapperSync.h"

#include "process/ResourceFolder.h"
#include "support/ProgramFolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

NSTaskWrapperSync fake(const QStringList &script)
{
    return {test::fakeProgramPath(), script};
}

TEST(NSTaskWrapperSync, ReturnsBothStreamsInTheOrderWritten)
{
    NSTaskWrapperSync tool = fake({u"out=a\\n"_s, u"err=b\\n"_s, u"out=c\\n"_s});
    EXPECT_EQ(tool.output(), QString());
    EXPECT_EQ(tool.runTask(), u"a\nb\nc\n");
    EXPECT_EQ(tool.output(), u"a\nb\nc\n");
}

TEST(NSTaskWrapperSync, DoesNotLookAtTheExitStatus)
{
    EXPECT_EQ(fake({u"out=text"_s, u"exit=9"_s}).runTask(), u"text");
}

TEST(NSTaskWrapperSync, RunsAgainWithFreshOutput)
{
    NSTaskWrapperSync tool = fake({u"out=x"_s});
    EXPECT_EQ(tool.runTask(), u"x");
    EXPECT_EQ(tool.runTask(), u"x");
}

TEST(NSTaskWrapperSync, GivesTheToolItsEnvironmentAndFolder)
{
    NSTaskWrapperSync tool = fake({u"env=MORE"_s, u"env=NSUnbufferedIO"_s, u"env=PATH"_s, u"cwd"_s, u"stdin"_s, u"fds"_s});
    tool.environment().insert(u"MORE"_s, u"a=b c"_s);
    tool.appendToPATH(u"/more"_s);
    tool.setDirectory(u"/usr"_s);
    EXPECT_EQ(tool.runTask(), u"MORE=a=b c\nNSUnbufferedIO=YES\nPATH=%1:%2:/more\ncwd: /usr\nstdin: /dev/null\nfds: 0 1 2\n"_s.arg(
                                  qEnvironmentVariable("PATH"), pathToCommandLineTools()));
}

TEST(NSTaskWrapperSync, UsesASearchPathWhenTheProcessHasNone)
{
    const QByteArray former = qgetenv("PATH");
    qunsetenv("PATH");
    NSTaskWrapperSync tool = fake({u"env=PATH"_s});
    const QString output = tool.runTask();
    qputenv("PATH", former);
    EXPECT_EQ(output, u"PATH=/usr/local/bin:/usr/bin:/bin:%1\n"_s.arg(pathToCommandLineTools()));
}

TEST(NSTaskWrapperSync, KeepsTheCurrentFolderOutOfTheSearchPath)
{
    const QByteArray former = qgetenv("PATH");
    const auto pathOf = [](const char *path) {
        qputenv("PATH", path);
        NSTaskWrapperSync tool = fake({u"env=PATH"_s});
        tool.appendToPATH(u"more"_s);
        return tool.runTask();
    };
    const QString dropped = pathOf(":/b:.:rel/x:/a::~/bin:/b:");
    const QString usual = pathOf(".");
    const QString empty = pathOf("");
    qputenv("PATH", former);
    EXPECT_EQ(dropped, u"PATH=/b:/a:/b:%1\n"_s.arg(pathToCommandLineTools()));
    EXPECT_EQ(usual, u"PATH=/usr/local/bin:/usr/bin:/bin:%1\n"_s.arg(pathToCommandLineTools()));
    EXPECT_EQ(empty, usual);
}

TEST(NSTaskWrapperSync, HandsArgumentsOverWordByWord)
{
    EXPECT_EQ(fake({u"args"_s, u"delay=0"_s}).runTask(), u"arg 1: args\narg 2: delay=0\n");
}

TEST(NSTaskWrapperSync, GivesNoTextForBytesThatAreNoUtf8)
{
    EXPECT_EQ(fake({u"out=good \\xff bad"_s}).runTask(), QString());
}

TEST(NSTaskWrapperSync, KeepsALeadingByteOrderMark)
{
    EXPECT_EQ(fake({u"out=\\xef\\xbb\\xbfx"_s}).runTask(), u"\ufeffx");
}

TEST(NSTaskWrapperSync, GivesAnEmptyTextForASilentTool)
{
    EXPECT_EQ(fake({u"exit=1"_s}).runTask(), QString());
}

TEST(NSTaskWrapperSync, NamesAMissingTool)
{
    const test::ProgramFolder tools;
    NSTaskWrapperSync tool(programPath(u"metaflac"_s), {});
    const QString text = tool.runTask();
    EXPECT_TRUE(text.contains(u"metaflac"_s)) << text.toStdString();
    EXPECT_TRUE(text.contains(tools.path()));
}

TEST(NSTaskWrapperSync, TakesALargeOutput)
{
    EXPECT_EQ(fake({u"flood=3000000"_s}).runTask().size(), 3000000);
}

} // namespace
} // namespace nurv
