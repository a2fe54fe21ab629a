// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/CommonTags.h"

#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

TagsObject record(const QString &album, const QString &artist)
{
    TagsObject tags;
    tags.setAlbumText(album);
    tags.setArtistText(artist);
    return tags;
}

std::optional<TagsObject> commonOf(const QList<TagsObject> &records)
{
    CommonTags common;
    for (const TagsObject &one : records)
        common.add(one);
    return common.common();
}

TEST(CommonTagsTest, HasNoneOfOneFile)
{
    EXPECT_FALSE(commonOf({}).has_value());
    EXPECT_FALSE(commonOf({record(u"A"_s, u"X"_s)}).has_value());
}

TEST(CommonTagsTest, ComparesTheFirstWithTheLast)
{
    const std::optional<TagsObject> common =
        commonOf({record(u"A"_s, u"X"_s), record(u"B"_s, u"X"_s), record(u"A"_s, u"Y"_s)});
    ASSERT_TRUE(common);
    EXPECT_EQ(common->albumText(), u"A"_s);
    EXPECT_EQ(common->artistText(), u""_s);
}

TEST(CommonTagsTest, TellsWhatDiffersInTheMiddle)
{
    CommonTags common;
    for (const QString &album : {u"A"_s, u"B"_s, u"A"_s})
        common.add(record(album, u"X"_s));
    EXPECT_TRUE(common.differs(2));
    EXPECT_FALSE(common.differs(1));
}

TEST(CommonTagsTest, SetsNoFieldThatDiffersBeforeTheFirstEqualOne)
{
    // The album is compared first, the artist third.
    const std::optional<TagsObject> common = commonOf({record(u"A"_s, u"X"_s), record(u"B"_s, u"X"_s)});
    ASSERT_TRUE(common);
    EXPECT_EQ(common->albumText(), std::nullopt);
    EXPECT_EQ(common->artistText(), u"X"_s);
}

TEST(CommonTagsTest, TellsAbsentFromEmpty)
{
    TagsObject empty = record(u"A"_s, u"X"_s);
    empty.setGenreText(u""_s);
    const std::optional<TagsObject> common = commonOf({record(u"A"_s, u"X"_s), empty});
    ASSERT_TRUE(common);
    EXPECT_EQ(common->genreText(), u""_s);
}

TEST(CommonTagsTest, NeverComparesTitleAndTrackForWhatIsCommon)
{
    TagsObject one = record(u"A"_s, u"X"_s);
    one.setTitleText(u"T"_s);
    one.setTrackText(u"1"_s);
    const std::optional<TagsObject> common = commonOf({one, one});
    ASSERT_TRUE(common);
    EXPECT_EQ(common->titleText(), std::nullopt);
    EXPECT_EQ(common->trackText(), std::nullopt);
}

TEST(CommonTagsTest, TakesPicturesWithTheSamePixels)
{
    const AlbumArt red = picture(20, 10, Qt::red);
    TagsObject one = record(u"A"_s, u"X"_s);
    TagsObject same = one;
    one.setAlbumArt(red);
    same.setAlbumArt(
        std::make_shared<const CoverPicture>(encodedPicture(imageOf(red), "bmp"), red->size(), red->depth()));
    TagsObject other = one;
    other.setAlbumArt(picture(20, 10, Qt::blue));
    EXPECT_EQ(commonOf({one, same})->albumArt(), red);
    EXPECT_EQ(commonOf({one, other})->albumArt(), nullptr);
    EXPECT_EQ(commonOf({one, record(u"A"_s, u"X"_s)})->albumArt(), nullptr);
}

TEST(CommonTagsTest, TakesCustomTagsThatAreAllEqual)
{
    TagsObject one = record(u"A"_s, u"X"_s);
    one.customTagsDictionary().insert(u"MOOD"_s, u"blue"_s);
    TagsObject other = one;
    EXPECT_EQ(commonOf({one, other})->customTagsDictionary().value(u"MOOD"_s), u"blue");
    other.customTagsDictionary().insert(u"KEY"_s, u"C"_s);
    EXPECT_TRUE(commonOf({one, other})->customTagsDictionary().isEmpty());
}

} // namespace
} // namespace nurv::test
