// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ProcessEnvironment.h"

#include "process/ProcessMark.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace nurv {

TEST(ProcessEnvironment, ReachesAChildByteForByte)
{
    const QByteArray value = "a=b \xF0\x9D\x84\x9E e\xCC\x81 ";
    ASSERT_EQ(::setenv("NURV_TEST_VALUE", value.constData(), 1), 0);
    ASSERT_EQ(::setenv("NURV_TEST_EMPTY", "", 1), 0);
    const ChildResult result = runChild({.launchPath = u"/usr/bin/env"_s,
                                         .arguments = {},
                                         .environment = processEnvironment(),
                                         .workingDirectory = {}});
    ::unsetenv("NURV_TEST_VALUE");
    ::unsetenv("NURV_TEST_EMPTY");
    EXPECT_TRUE(result.output.contains("NURV_TEST_VALUE=" + value + '\n')) << result.output.constData();
    EXPECT_TRUE(result.output.contains("NURV_TEST_EMPTY=\n")) << result.output.constData();
}

TEST(ProcessEnvironment, KeepsTheCurrentFolderOutOfTheSearchPath)
{
    const QByteArray former = qgetenv("PATH");
    const auto pathFor = [](const char *path) {
        ::setenv("PATH", path, 1);
        return processEnvironment().value(u"PATH"_s);
    };
    EXPECT_EQ(pathFor("/usr/bin:/bin"), u"/usr/bin:/bin"_s);
    EXPECT_EQ(pathFor(":/usr/bin:./x:..:/bin/:x:"), u"/usr/bin:/bin/"_s);
    EXPECT_EQ(pathFor(""), u"/usr/local/bin:/usr/bin:/bin"_s);
    EXPECT_EQ(pathFor("::."), u"/usr/local/bin:/usr/bin:/bin"_s);
    ::unsetenv("PATH");
    EXPECT_FALSE(processEnvironment().contains(u"PATH"_s));
    ::setenv("PATH", former.constData(), 1);
}

TEST(ProcessEnvironment, GetsTheMarkOfThisProcessAndNoOther)
{
    EXPECT_EQ(processMark().size(), 32);
    ChildEnvironment environment = processEnvironment();
    environment.insert(u"NURV_STARTED_BY"_s, u"somebody else"_s);
    const ChildResult result = runChild({.launchPath = u"/usr/bin/env"_s,
                                         .arguments = {},
                                         .environment = environment,
                                         .workingDirectory = {}});
    EXPECT_EQ(result.output.count("NURV_STARTED_BY="), 1) << result.output.constData();
    EXPECT_TRUE(result.output.contains("NURV_STARTED_BY=" + processMark() + '\n')) << result.output.constData();
}

} // namespace nurv
