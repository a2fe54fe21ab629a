// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/StoredTags.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

#include <QFileInfo>

#include <flacpicture.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

class StoredTagsTest : public ::testing::Test {
protected:
    /// Takes the tags down, writes others and gives the first ones back.
    void expectRoundTrip(TagFormat format, const QString &path)
    {
        const StoredTags first = storedTags::read(format, path);
        EXPECT_FALSE(first.isEmpty());
        const QByteArray sound = decodedMd5(path);
        storedTags::replace(format, path, {});
        EXPECT_EQ(storedTags::read(format, path), StoredTags());
        EXPECT_EQ(decodedMd5(path), sound);
        storedTags::replace(format, path, first);
        EXPECT_EQ(storedTags::read(format, path), first);
        storedTags::replace(format, path, first);
        EXPECT_EQ(storedTags::read(format, path), first);
        EXPECT_EQ(decodedMd5(path), sound);
    }
    TestFolder folder;
};

TEST_F(StoredTagsTest, BringsBackRepeatedFieldsAndPicturesOfFlac)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(20, 10, Qt::red));
    TagLibTagsHelper::writeTagsForFLACFile(path, record, false);
    const QString jpeg = folder.write(u"back.jpg"_s, encodedPicture(picture(9, 9, Qt::blue), "jpeg"));
    const QStringList arguments{u"--set-tag=PERFORMER=one"_s, u"--set-tag=PERFORMER=two = 2"_s, u"--set-tag=KEY=ключ"_s,
                                u"--import-picture-from=4||Rücken||"_s + jpeg, path};
    ASSERT_EQ(runProgram(u"metaflac"_s, arguments).exitStatus, 0);
    QStringList before = metaflacTags(path);
    const QByteArray pictures = runProgram(u"metaflac"_s, {u"--list"_s, u"--block-type=PICTURE"_s, path}).output;
    expectRoundTrip(TagFormat::Flac, path);
    QStringList after = metaflacTags(path);
    before.sort();
    after.sort();
    EXPECT_EQ(after, before);
    const QByteArray restored = runProgram(u"metaflac"_s, {u"--list"_s, u"--block-type=PICTURE"_s, path}).output;
    EXPECT_EQ(restored.count("Rücken"), pictures.count("Rücken"));
    EXPECT_EQ(restored.count("METADATA block"), 2);
}

TEST_F(StoredTagsTest, BringsBackThePictureWithinAComment)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    TagLib::FLAC::Picture image;
    const QByteArray png = encodedPicture(picture(3, 3, Qt::green), "png");
    image.setMimeType("image/png");
    image.setData({png.constData(), static_cast<unsigned int>(png.size())});
    const TagLib::ByteVector block = image.render();
    const QByteArray text = QByteArray(block.data(), static_cast<qsizetype>(block.size())).toBase64();
    const QString field = folder.write(u"field"_s, text);
    ASSERT_EQ(runProgram(u"metaflac"_s, {u"--set-tag-from-file=METADATA_BLOCK_PICTURE="_s + field, path}).exitStatus,
              0);
    expectRoundTrip(TagFormat::Flac, path);
    EXPECT_TRUE(metaflacTags(path).contains(u"METADATA_BLOCK_PICTURE="_s + QString::fromLatin1(text)));
}

TEST_F(StoredTagsTest, TakesNoShortApeTagForAnOldOne)
{
    // With 53 letters the whole tag has 131 bytes, and "TAG" stands 128 bytes before the end.
    const StoredTags tags{{.holder = StoredTag::Holder::Ape, .name = u"Title"_s, .text = QString(53, u'x')}};
    for (const auto &[format, path] : {std::pair(TagFormat::Wavpack, writeWavpack(folder, u"a.wv"_s)),
                                       std::pair(TagFormat::Mp3, writeMp3(folder, u"b.mp3"_s))}) {
        storedTags::replace(format, path, {});
        const qint64 size = QFileInfo(path).size();
        storedTags::replace(format, path, tags);
        ASSERT_EQ(QFileInfo(path).size(), size + 131) << "the case is another one";
        EXPECT_EQ(storedTags::read(format, path), tags);
        storedTags::replace(format, path, tags);
        EXPECT_EQ(storedTags::read(format, path), tags);
    }
}

TEST_F(StoredTagsTest, BringsBackFramesOfEveryKindOfMp3)
{
    const QString cover = folder.write(u"c.png"_s, encodedPicture(picture(9, 9, Qt::blue), "png"));
    const QString path =
        writeMp3(folder, u"a.mp3"_s,
                 {u"--tt"_s, u"Title"_s, u"--ta"_s, u"Artist"_s, u"--ty"_s, u"1999"_s, u"--tc"_s, u"Comment"_s,
                  u"--tv"_s, u"TXXX=MOOD=blue"_s, u"--tv"_s, u"TPE2=Band"_s, u"--ti"_s, cover, u"--add-id3v2"_s});
    QMap<QString, QString> before = ffprobeTags(path);
    expectRoundTrip(TagFormat::Mp3, path);
    QMap<QString, QString> after = ffprobeTags(path);
    // ffprobe knows the comment in UTF-8 only.
    EXPECT_EQ(after.take(u"comment"_s), u"Comment");
    before.remove(u"comment"_s);
    EXPECT_EQ(after, before);
}

TEST_F(StoredTagsTest, BringsBackItemsOfApeTags)
{
    const QString image = folder.write(u"c.png"_s, encodedPicture(picture(9, 9, Qt::blue), "png"));
    const QString path = writeWavpack(
        folder, u"a.wv"_s,
        {u"-w"_s, u"Title=T"_s, u"-w"_s, u"Mood=a=b"_s, u"--write-binary-tag"_s, u"Cover Art (Front)=@"_s + image});
    const QMap<QString, QString> before = ffprobeTags(path);
    expectRoundTrip(TagFormat::Wavpack, path);
    EXPECT_EQ(ffprobeTags(path), before);
}

TEST_F(StoredTagsTest, BringsBackItemsOfMpeg4)
{
    const QString path =
        writeByFfmpeg(folder.path(u"a.m4a"_s), {.seconds = 0.5}, {u"-c:a"_s, u"alac"_s, u"-metadata"_s, u"title=T"_s});
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(20, 10, Qt::red));
    static_cast<void>(AACTagsHelper::writeTagsForFile(path, record, false, false));
    const QMap<QString, QString> before = ffprobeTags(path);
    expectRoundTrip(TagFormat::Mp4, path);
    EXPECT_EQ(ffprobeTags(path), before);
}

TEST_F(StoredTagsTest, RefusesWhatIsNoTagAndLeavesTheFile)
{
    const QString mp3 = writeMp3(folder, u"a.mp3"_s, {u"--tt"_s, u"Title"_s});
    const QByteArray before = folder.read(u"a.mp3"_s);
    using Holder = StoredTag::Holder;
    const QList<StoredTag> wrong{{.holder = Holder::Vorbis, .name = u"TITLE"_s, .text = u"x"_s},
                                 {.holder = Holder::Id3v2, .name = u"APIC"_s, .data = "no frame"},
                                 {.holder = Holder::Id3v1, .name = u"ID3v1"_s, .data = "TAG"},
                                 {.holder = Holder::Ape, .name = u"x"_s, .data = "xx"}};
    for (const StoredTag &tag : wrong) {
        EXPECT_TRUE(failureOf([&] { storedTags::replace(TagFormat::Mp3, mp3, {tag}); })) << qPrintable(tag.name);
        EXPECT_EQ(folder.read(u"a.mp3"_s), before);
    }
    EXPECT_TRUE(failureOf([&] { static_cast<void>(storedTags::read(TagFormat::Mp4, mp3)); }));
}

} // namespace
} // namespace nurv::test
