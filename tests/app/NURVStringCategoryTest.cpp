// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVStringCategory.h"

#include <gtest/gtest.h>

namespace nurv {

TEST(NURVStringCategory, StartsWithAPrefixAtTheFirstCharacterOnly)
{
    EXPECT_TRUE(nurvStartsWith(u"abc", u"ab"));
    EXPECT_TRUE(nurvStartsWith(u"abc", u"abc"));
    EXPECT_FALSE(nurvStartsWith(u"cab", u"ab"));
    EXPECT_FALSE(nurvStartsWith(u"Abc", u"ab"));
    EXPECT_FALSE(nurvStartsWith(u"a", u"ab"));
    EXPECT_FALSE(nurvStartsWith(u"", u"ab"));
}

TEST(NURVStringCategory, NothingStartsWithAnEmptyPrefix)
{
    EXPECT_FALSE(nurvStartsWith(u"abc", u""));
    EXPECT_FALSE(nurvStartsWith(u"", u""));
}

TEST(NURVStringCategory, EndsWithASuffixAtTheLastCharacterOnly)
{
    EXPECT_TRUE(nurvEndsWith(u"song.flac", u".flac"));
    EXPECT_FALSE(nurvEndsWith(u"song.flac", u".FLAC"));
    EXPECT_FALSE(nurvEndsWith(u"song.flac.txt", u".flac"));
    EXPECT_FALSE(nurvEndsWith(u"c", u".flac"));
    EXPECT_TRUE(nurvEndsWith(u"abc", u""));
}

} // namespace nurv
