// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibTagsHelper.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

/// The two formats that share the generic fields of an APE tag.
struct Format {
    const char *name;
    QString fileName;
    QString (*make)(const TestFolder &, const QString &);
    TagsObject (*read)(const QString &);
    void (*write)(const QString &, const TagsObject &, bool);
};

void PrintTo(const Format &format, std::ostream *stream)
{
    *stream << format.name;
}

class TagLibTagsHelperApe : public ::testing::TestWithParam<Format> {
protected:
    TestFolder folder;
    QString path = GetParam().make(folder, GetParam().fileName);

    /// The sound part, which no write may touch.
    [[nodiscard]] QByteArray beforeTheTag() const
    {
        const QByteArray bytes = folder.read(GetParam().fileName);
        const qsizetype tag = bytes.indexOf("APETAGEX");
        return tag < 0 ? bytes : bytes.left(tag);
    }
};

} // namespace

TEST_P(TagLibTagsHelperApe, WritesTheFieldsOfTheTableAndNoOthers)
{
    const QByteArray sound = beforeTheTag();
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(8, 8, Qt::red));
    record.customTagsDictionary().insert(u"MOOD"_s, u"calm"_s);
    GetParam().write(path, record, false);
    EXPECT_EQ(beforeTheTag(), sound);
    QMap<QString, QString> tags = ffprobeTags(path);
    // The wavpack demuxer's own note about the stream is no tag.
    tags.remove(u"encoder"_s);
    const QMap<QString, QString> expected = {{u"title"_s, *record.titleText()},
                                             {u"artist"_s, *record.artistText()},
                                             {u"album"_s, *record.albumText()},
                                             {u"comment"_s, *record.commentText()},
                                             {u"genre"_s, *record.genreText()},
                                             {u"track"_s, u"7"_s},
                                             {u"year"_s, u"1999"_s}};
    EXPECT_EQ(tags.keys(), expected.keys());
    for (auto tag = expected.cbegin(); tag != expected.cend(); ++tag)
        EXPECT_EQ(tags.value(tag.key()), tag.value());
}

TEST_P(TagLibTagsHelperApe, ReadsWhatItWrote)
{
    const TagsObject record = fullRecord();
    GetParam().write(path, record, false);
    const TagsObject read = GetParam().read(path);
    EXPECT_EQ(read.titleText(), record.titleText());
    EXPECT_EQ(read.artistText(), record.artistText());
    EXPECT_EQ(read.albumText(), record.albumText());
    EXPECT_EQ(read.commentText(), record.commentText());
    EXPECT_EQ(read.genreText(), record.genreText());
    EXPECT_EQ(read.dateText(), u"1999"_s);
    EXPECT_EQ(read.trackText(), u"7"_s);
    for (const auto &text : {read.discText(), read.discTotalText(), read.trackTotalText(), read.composerText()})
        EXPECT_EQ(text, u""_s);
    EXPECT_FALSE(read.albumArtistText() || read.encoderSettings());
}

TEST_P(TagLibTagsHelperApe, ReadsAFileWithoutTagsAsBlank)
{
    TagsObject blank;
    TagLibTagsHelper::setBlankTags(blank);
    EXPECT_TRUE(GetParam().read(path).isEqualToTagsObject(blank));
}

TEST_P(TagLibTagsHelperApe, TakesTheLeadingIntegersOfDateAndTrack)
{
    TagsObject record;
    record.setDateText(u"2001-05-03"_s);
    record.setTrackText(u"3/12"_s);
    GetParam().write(path, record, false);
    EXPECT_EQ(GetParam().read(path).dateText(), u"2001"_s);
    EXPECT_EQ(GetParam().read(path).trackText(), u"3"_s);
}

TEST_P(TagLibTagsHelperApe, LeavesWhatTheRecordLacksWithoutTheFlag)
{
    GetParam().write(path, fullRecord(), false);
    TagsObject few;
    few.setTitleText(u"New"_s);
    few.setArtistText(u""_s);
    GetParam().write(path, few, false);
    const TagsObject read = GetParam().read(path);
    EXPECT_EQ(read.titleText(), u"New"_s);
    EXPECT_EQ(read.artistText(), fullRecord().artistText());
    EXPECT_EQ(read.dateText(), u"1999"_s);
}

TEST_P(TagLibTagsHelperApe, ClearsWhatTheRecordLacksWithTheFlag)
{
    const QByteArray sound = beforeTheTag();
    GetParam().write(path, fullRecord(), false);
    TagsObject few;
    few.setTitleText(u"New"_s);
    few.setArtistText(u""_s);
    GetParam().write(path, few, true);
    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), u"New"_s);
    for (const QString &key : {u"artist"_s, u"album"_s, u"comment"_s, u"genre"_s, u"year"_s, u"track"_s})
        EXPECT_FALSE(tags.contains(key)) << qPrintable(key);
    EXPECT_EQ(beforeTheTag(), sound);
}

TEST_P(TagLibTagsHelperApe, TakesVeryLongTexts)
{
    TagsObject record;
    record.setCommentText(u"длинный=\n"_s.repeated(50'000));
    GetParam().write(path, record, false);
    EXPECT_EQ(GetParam().read(path).commentText(), record.commentText());
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TagLibTagsHelperApe,
    ::testing::Values(Format{"MonkeysAudio", u"a.ape"_s, writeApe, TagLibTagsHelper::tagsForAPEFile,
                             TagLibTagsHelper::writeTagsForAPEFile},
                      Format{"WavPack", u"a.wv"_s,
                             [](const TestFolder &folder, const QString &name) { return writeWavpack(folder, name); },
                             TagLibTagsHelper::tagsForWavpackFile, TagLibTagsHelper::writeTagsForWavpackFile}),
    [](const ::testing::TestParamInfo<Format> &format) { return std::string(format.param.name); });

TEST(TagLibTagsHelperWavpack, ReadsTheTagsOfAnotherWriterAndKeepsItsOtherItems)
{
    const TestFolder folder;
    const QString path = writeWavpack(
        folder, u"a.wv"_s,
        {u"-w"_s, u"Title=Größe"_s, u"-w"_s, u"Year=1980"_s, u"-w"_s, u"Track=5/9"_s, u"-w"_s, u"Mood=calm"_s});
    const TagsObject tags = TagLibTagsHelper::tagsForWavpackFile(path);
    EXPECT_EQ(tags.titleText(), u"Größe"_s);
    EXPECT_EQ(tags.dateText(), u"1980"_s);
    EXPECT_EQ(tags.trackText(), u"5"_s);
    const QByteArray sound = decodedMd5(path);
    TagLibTagsHelper::writeTagsForWavpackFile(path, {}, true);
    EXPECT_EQ(ffprobeTags(path).value(u"mood"_s), u"calm"_s);
    EXPECT_FALSE(ffprobeTags(path).contains(u"title"_s));
    EXPECT_EQ(decodedMd5(path), sound);
    EXPECT_EQ(runProgram(u"wvunpack"_s, {u"-q"_s, u"-v"_s, path}).exitStatus, 0);
}
