// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ChildProgram.h"
#include "support/FindProgram.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

namespace nurv::test {

namespace {

TEST(ChildProgram, TellsOutputAndStatus)
{
    ChildProgram child({"/bin/sh", "-c", "printf abc; exit 7"}, ChildProgram::Pipe::FromChild);
    std::array<uint8_t, 16> bytes{};
    std::string output;
    while (const size_t count = child.read(bytes))
        output.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
    EXPECT_EQ(output, "abc");
    EXPECT_EQ(child.wait(), 7);
    EXPECT_EQ(child.wait(), 7) << "asked again";
}

TEST(ChildProgram, TellsASignalFromSuccess)
{
    ChildProgram child({"/bin/sh", "-c", "kill -KILL $$"}, ChildProgram::Pipe::FromChild);
    EXPECT_EQ(child.wait(), 128 + 9);
}

TEST(ChildProgram, CountsOneThatCannotBeStartedAsFailed)
{
    ChildProgram child({"no such program"}, ChildProgram::Pipe::FromChild);
    std::array<uint8_t, 16> bytes{};
    EXPECT_EQ(child.read(bytes), 0U);
    EXPECT_NE(child.wait(), 0);
}

TEST(ChildProgram, StartsNothingFromTheCurrentFolder)
{
    const std::string former = std::getenv("PATH");
    ::setenv("PATH", ".::relative:/bin", 1);
    EXPECT_EQ(findProgram("sh"), "/bin/sh");
    EXPECT_FALSE(findProgram("no such program"));
    ::setenv("PATH", former.c_str(), 1);
}

} // namespace

} // namespace nurv::test
