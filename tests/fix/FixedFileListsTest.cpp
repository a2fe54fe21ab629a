// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixedFileLists.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace fixedFileLists;

TEST(FixedFileLists, TakeTheDiscFromBetweenTheLastDAndTheNextT)
{
    EXPECT_EQ(discNumber(u"/shows/show-d1t01.shn"_s), u"1");
    EXPECT_EQ(discNumber(u"/dead/2001-d2/show-d12t01.shn"_s), u"12");
    EXPECT_EQ(discNumber(u"/shows/disc3 track.shn"_s), u"isc3 ");
    EXPECT_EQ(discNumber(u"/shows/d2/t01.shn"_s), u"2/");
    EXPECT_EQ(discNumber(u"/music/best/a.shn"_s), u"/music/bes") << "without a d, the whole path counts";
    EXPECT_EQ(discNumber(u"/music/dt.shn"_s), QString());
    EXPECT_EQ(discNumber(u"/music/a.shnd"_s), QString());
    EXPECT_EQ(discNumber(u"/music/d9.shn"_s), u"9.shn") << "without a t behind it, all of the rest does";
}

TEST(FixedFileLists, GroupByDiscInTheOrderOfTheFiles)
{
    const auto lists = listsByDisc({u"/s/a-d2t01.shn"_s, u"/s/a-d1t01.shn"_s, u"/s/a-d2t02.shn"_s, u"/s/a-d3t01.shn"_s});
    ASSERT_EQ(lists.size(), 3);
    EXPECT_EQ(lists[0].fileName, u"Disc2.md5");
    EXPECT_EQ(lists[0].places, (QList<qsizetype>{0, 2}));
    EXPECT_EQ(lists[1].fileName, u"Disc1.md5");
    EXPECT_EQ(lists[1].places, QList<qsizetype>{1});
    EXPECT_EQ(lists[2].fileName, u"Disc3.md5");
}

TEST(FixedFileLists, LeadIntoNoOtherFolder)
{
    const auto lists = listsByDisc({u"/s/d2/t01.shn"_s, u"/s/d2/t02.shn"_s, u"/music/b/a.shn"_s, u"/s/d../../../t.shn"_s,
                                    u"/s/dt.shn"_s});
    QStringList names;
    for (const DiscList &list : lists)
        names.append(list.fileName);
    EXPECT_EQ(names, (QStringList{u"Disc2_.md5"_s, u"Disc_music_b_a.shn.md5"_s, u"Disc.._.._.._.md5"_s, u"Disc.md5"_s}));
    EXPECT_EQ(lists[0].places, (QList<qsizetype>{0, 1}));
}

} // namespace
} // namespace nurv
