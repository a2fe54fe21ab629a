// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsObject.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;
using nurv::TagsObject;

namespace {

using Text = TagsObject::Text;
using Getter = const Text &(TagsObject::*)() const;
using Setter = void (TagsObject::*)(Text);

struct Field {
    Getter get;
    Setter set;
};

const std::vector<Field> kComparedFields = {
    {&TagsObject::titleText, &TagsObject::setTitleText},
    {&TagsObject::artistText, &TagsObject::setArtistText},
    {&TagsObject::dateText, &TagsObject::setDateText},
    {&TagsObject::albumText, &TagsObject::setAlbumText},
    {&TagsObject::commentText, &TagsObject::setCommentText},
    {&TagsObject::discText, &TagsObject::setDiscText},
    {&TagsObject::discTotalText, &TagsObject::setDiscTotalText},
    {&TagsObject::trackText, &TagsObject::setTrackText},
    {&TagsObject::trackTotalText, &TagsObject::setTrackTotalText},
    {&TagsObject::genreText, &TagsObject::setGenreText},
    {&TagsObject::composerText, &TagsObject::setComposerText},
};
const std::vector<Field> kOtherFields = {
    {&TagsObject::albumArtistText, &TagsObject::setAlbumArtistText},
    {&TagsObject::encoderSettings, &TagsObject::setEncoderSettings},
};

std::vector<Field> allFields()
{
    std::vector<Field> fields = kComparedFields;
    fields.insert(fields.end(), kOtherFields.begin(), kOtherFields.end());
    return fields;
}

nurv::AlbumArt redSquare()
{
    return std::make_shared<const nurv::CoverPicture>("red", QSize(4, 4), 24);
}

} // namespace

TEST(TagsObject, StartsWithEverythingAbsentAndNoCustomTags)
{
    const TagsObject record;
    for (const Field &field : allFields())
        EXPECT_FALSE((record.*field.get)().has_value());
    EXPECT_EQ(record.albumArt(), nullptr);
    EXPECT_TRUE(record.customTagsDictionary().isEmpty());
}

TEST(TagsObject, KeepsEachTextInAFieldOfItsOwn)
{
    TagsObject record;
    const std::vector<Field> fields = allFields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        (record.*fields[i].set)(QString::number(i));
    for (std::size_t i = 0; i < fields.size(); ++i)
        EXPECT_EQ((record.*fields[i].get)(), QString::number(i));
}

TEST(TagsObject, KeepsAbsentEmptyAndSetApart)
{
    TagsObject record;
    record.setTitleText(QString());
    EXPECT_TRUE(record.titleText().has_value());
    record.setTitleText(std::nullopt);
    EXPECT_FALSE(record.titleText().has_value());
    record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    EXPECT_EQ(record.customTagsDictionary().value(u"MOOD"_s), u"calm"_s);
}

TEST(TagsObject, TwoFreshRecordsAreEqual)
{
    const TagsObject first;
    const TagsObject second;
    EXPECT_TRUE(first.isEqualToTagsObject(second));
    EXPECT_TRUE(first.isEqual(&second));
}

TEST(TagsObject, IsEqualToItselfAndNotToNothing)
{
    const TagsObject record;
    EXPECT_TRUE(record.isEqual(&record));
    EXPECT_FALSE(record.isEqual(nullptr));
}

TEST(TagsObject, AbsentAndEmptyAreUnequalInEveryComparedField)
{
    for (const Field &field : kComparedFields) {
        const TagsObject absent;
        TagsObject empty;
        (empty.*field.set)(u""_s);
        EXPECT_FALSE(absent.isEqualToTagsObject(empty));
        EXPECT_FALSE(empty.isEqual(&absent));
    }
}

TEST(TagsObject, DifferentTextsAreUnequalInEveryComparedField)
{
    for (const Field &field : kComparedFields) {
        TagsObject first;
        TagsObject second;
        (first.*field.set)(u"one"_s);
        (second.*field.set)(u"One"_s);
        EXPECT_FALSE(first.isEqualToTagsObject(second));
        (second.*field.set)(u"one"_s);
        EXPECT_TRUE(first.isEqualToTagsObject(second));
    }
}

TEST(TagsObject, AlbumArtistEncoderSettingsAndCustomTagsTakeNoPart)
{
    const TagsObject plain;
    TagsObject other;
    for (const Field &field : kOtherFields)
        (other.*field.set)(u"x"_s);
    other.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    EXPECT_TRUE(plain.isEqualToTagsObject(other));
}

TEST(TagsObject, ComparesPicturesByIdentity)
{
    TagsObject first;
    TagsObject second;
    first.setAlbumArt(redSquare());
    EXPECT_FALSE(first.isEqualToTagsObject(second));
    EXPECT_FALSE(second.isEqualToTagsObject(first));
    second.setAlbumArt(redSquare());
    EXPECT_EQ(first.albumArt()->bytes(), second.albumArt()->bytes());
    EXPECT_FALSE(first.isEqualToTagsObject(second));
    second.setAlbumArt(first.albumArt());
    EXPECT_TRUE(first.isEqualToTagsObject(second));
}

TEST(TagsObject, StringTagsAreComparedCharacterByCharacter)
{
    EXPECT_TRUE(TagsObject::stringTagsEqual(std::nullopt, std::nullopt));
    EXPECT_FALSE(TagsObject::stringTagsEqual(std::nullopt, u""_s));
    EXPECT_FALSE(TagsObject::stringTagsEqual(u""_s, std::nullopt));
    EXPECT_TRUE(TagsObject::stringTagsEqual(u""_s, u""_s));
    EXPECT_FALSE(TagsObject::stringTagsEqual(u"a"_s, u"A"_s));
    EXPECT_FALSE(TagsObject::stringTagsEqual(u"\u00e9"_s, u"e\u0301"_s));
    EXPECT_FALSE(TagsObject::stringTagsEqual(u"a"_s, u"a "_s));
}
