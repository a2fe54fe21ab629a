// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileOrderEditor.h"

#include <gmock/gmock.h>

namespace nurv::test {

namespace {

using ::testing::ElementsAre;
using Names = std::vector<std::string>;

TEST(FileOrder, TakesNumbersByTheirValue)
{
    Names names{"t10", "t2", "t1", "t1.10", "t1.5", "T3", "10", "2"};
    sortNaturally(names);
    EXPECT_THAT(names, ElementsAre("2", "10", "T3", "t1", "t1.5", "t1.10", "t2", "t10"));
}

TEST(FileOrder, TakesZerosInFrontForAFraction)
{
    Names names{"9", "0", "1", "000", "01", "010", "00", "09"};
    sortNaturally(names);
    EXPECT_THAT(names, ElementsAre("000", "00", "01", "010", "09", "0", "1", "9"));
}

TEST(FileOrder, SortsByBytesWhereToldSo)
{
    Names names{"t10", "t2", "\xFF", "t1"};
    sortAscii(names);
    EXPECT_THAT(names, ElementsAre("t1", "t10", "t2", "\xFF"));
}

} // namespace

} // namespace nurv::test
