// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

#include "TagFixtures.h"
#include "tags/AlbumArt.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

MetadataInventory withTags(const QStringList &names)
{
    MetadataInventory inventory;
    for (const QString &name : names)
        inventory.tags.insert(name, {u"value"_s});
    return inventory;
}

MetadataInventory withPictures(const QByteArrayList &pictures)
{
    MetadataInventory inventory;
    inventory.pictures = pictures;
    return inventory;
}

MetadataInventory withChunks(const QStringList &names)
{
    MetadataInventory inventory;
    for (const QString &name : names)
        inventory.foreignChunks[name].append("digest");
    return inventory;
}

std::optional<QString> lostIn(const QString &output, const MetadataInventory &source)
{
    return metadataLost(source, {}, output);
}

std::optional<QString> lost(const QMap<QString, QStringList> &source, const QMap<QString, QStringList> &output)
{
    return metadataLost({.tags = source, .pictures = {}, .foreignChunks = {}},
                        {.tags = output, .pictures = {}, .foreignChunks = {}}, u"a.flac"_s);
}

} // namespace

TEST(MetadataLost, SaysNothingWhenAllIsThere)
{
    EXPECT_EQ(lostIn(u"a.flac"_s, {}), std::nullopt);
    MetadataInventory inventory = withTags({u"TITLE"_s, u"MOOD"_s});
    inventory.pictures = {"picture"};
    inventory.foreignChunks.insert(u"bext"_s, {"digest"});
    MetadataInventory more = inventory;
    more.tags.insert(u"ENCODERS"_s, {u"more"_s});
    more.tags[u"TITLE"_s].prepend(u"other"_s);
    more.pictures.prepend("other");
    more.foreignChunks[u"bext"_s].prepend("other");
    EXPECT_EQ(metadataLost(inventory, more, u"a.wav"_s), std::nullopt);
}

TEST(MetadataLost, CountsAndNamesWhatIsLost)
{
    EXPECT_EQ(lostIn(u"a.flac"_s, withTags({u"MOOD"_s})), u"a tag (MOOD) is not in the output"_s);
    EXPECT_EQ(lostIn(u"a.flac"_s, withTags({u"MOOD"_s, u"COMPOSER"_s})),
              u"2 tags (COMPOSER, MOOD) are not in the output"_s);
    EXPECT_EQ(lostIn(u"a.flac"_s, withTags({u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s})),
              u"5 tags (A, B, C and 2 more) are not in the output"_s);
    EXPECT_EQ(lostIn(u"a.aiff"_s, withPictures({"one"})), u"a picture is not in the output"_s);
    EXPECT_EQ(lostIn(u"a.m4a"_s, withPictures({"one", "two", "three"})), u"3 pictures are not in the output"_s);
    EXPECT_EQ(lostIn(u"a.flac"_s, withChunks({u"bext"_s})), u"a bext chunk is not in the output"_s);
    EXPECT_EQ(lostIn(u"a.flac"_s, withChunks({u"iXML"_s})), u"an iXML chunk is not in the output"_s);
    EXPECT_EQ(lostIn(u"a.wv"_s, withChunks({u"cue"_s, u"bext"_s})), u"2 chunks (bext, cue) are not in the output"_s);
    EXPECT_EQ(lostIn(u"a.wv"_s, withChunks({u"odd"_s, u"odd"_s})), u"2 chunks (odd) are not in the output"_s);
    EXPECT_EQ(lostIn(u"a.wav"_s, withChunks({u""_s})), u"data without a name is not in the output"_s);
}

TEST(MetadataLost, NamesKindsThatHaveNoPlaceForIt)
{
    MetadataInventory source = withTags({u"A"_s, u"B"_s});
    source.pictures = {"one"};
    EXPECT_EQ(lostIn(u"/folder.flac/a.WAV"_s, source), u"2 tags and a picture have no place in a WAV file"_s);
    EXPECT_EQ(lostIn(u"a.shn"_s, source), u"2 tags and a picture have no place in a Shorten file"_s);
    EXPECT_EQ(lostIn(u"a.tta"_s, withTags({u"A"_s})), u"a tag has no place in a TTA file"_s);
    EXPECT_EQ(lostIn(u"a.m4a"_s, withChunks({u"bext"_s})), u"a bext chunk has no place in an MPEG-4 file"_s);
    EXPECT_EQ(lostIn(u"a.tta"_s, withChunks({u"bext"_s})), u"a bext chunk has no place in a TTA file"_s);
    EXPECT_EQ(lostIn(u"a.xyz"_s, withTags({u"A"_s})), u"a tag (A) is not in the output"_s);
    for (const QString &kind : {u"aiff"_s, u"aif"_s, u"flac"_s, u"wv"_s, u"ape"_s, u"m4a"_s})
        EXPECT_EQ(lostIn(u"a."_s + kind, withTags({u"A"_s})), u"a tag (A) is not in the output"_s) << qPrintable(kind);
}

TEST(MetadataLost, JoinsWhatIsLostInDifferentWays)
{
    MetadataInventory source = withTags({u"MOOD"_s, u"WORK"_s});
    source.pictures = {"one", "two"};
    source.foreignChunks = {{u"bext"_s, {"digest"}}, {u""_s, {"digest"}}};
    EXPECT_EQ(lostIn(u"a.tta"_s, source),
              u"2 tags, 2 pictures, a bext chunk and data without a name have no place in a TTA file"_s);
    EXPECT_EQ(lostIn(u"a.m4a"_s, source),
              u"a bext chunk and data without a name have no place in an MPEG-4 file, and "
              "2 tags (MOOD, WORK) and 2 pictures are not in the output"_s);
    EXPECT_EQ(
        lostIn(u"a.wav"_s, source),
        u"2 tags and 2 pictures have no place in a WAV file, and a bext chunk and data without a name are not in the output"_s);
}

TEST(MetadataLost, EscapesNamesThatAFileChooses)
{
    EXPECT_EQ(lostIn(u"a.flac"_s, withTags({u"A\nB\u001b[31m\u202e"_s})),
              u"a tag (A\\x0aB\\x1b[31m\\x202e) is not in the output"_s);
    EXPECT_EQ(lostIn(u"a.flac"_s, withTags({QString(100, u'X')})),
              u"a tag ("_s + QString(40, u'X') + u"…) is not in the output"_s);
}

TEST(MetadataLost, ComparesValues)
{
    EXPECT_EQ(lost({{u"TITLE"_s, {u"Song"_s}}}, {{u"TITLE"_s, {u"song"_s}}}), u"a tag (TITLE) is not in the output"_s);
    EXPECT_EQ(lost({{u"ARTIST"_s, {u"One"_s, u"Two"_s}}}, {{u"ARTIST"_s, {u"One"_s}}}),
              u"a tag (ARTIST) is not in the output"_s);
    EXPECT_EQ(lost({{u"ARTIST"_s, {u"One"_s, u"Two"_s}}}, {{u"ARTIST"_s, {u"Two"_s, u"One"_s}}}), std::nullopt);
    EXPECT_EQ(lost({{u"TRACKTOTAL"_s, {u"12"_s}}}, {{u"TRACKNUMBER"_s, {u"12"_s}}}),
              u"a tag (TRACKTOTAL) is not in the output"_s);
}

TEST(MetadataLost, KeepsTheDayOfADateApartFromItsYear)
{
    EXPECT_EQ(lost({{u"DATE"_s, {u"1977-05-08"_s}}}, {{u"DATE"_s, {u"1977"_s}}}),
              u"a tag (DATE) is not in the output"_s);
    EXPECT_EQ(lost({{u"DATE"_s, {u"1977-05-08"_s, u"1977"_s}}}, {{u"DATE"_s, {u"1977-05-08"_s}}}), std::nullopt);
    EXPECT_EQ(lost({{u"DATE"_s, {u"197"_s}}}, {{u"DATE"_s, {u"1977"_s}}}), u"a tag (DATE) is not in the output"_s);
}

TEST(MetadataLost, AsksForAnAlbumArtistOnlyWhereItIsNotTheArtist)
{
    EXPECT_EQ(lost({{u"ARTIST"_s, {u"Band"_s}}, {u"ALBUMARTIST"_s, {u"Band"_s}}}, {{u"ARTIST"_s, {u"Band"_s}}}),
              std::nullopt);
    EXPECT_EQ(lost({{u"ALBUMARTIST"_s, {u"Band"_s}}}, {{u"ARTIST"_s, {u"Band"_s}}}),
              u"a tag (ALBUMARTIST) is not in the output"_s);
    EXPECT_EQ(lost({{u"ARTIST"_s, {u"Solo"_s}}, {u"ALBUMARTIST"_s, {u"Band"_s}}}, {{u"ARTIST"_s, {u"Solo"_s}}}),
              u"a tag (ALBUMARTIST) is not in the output"_s);
}

TEST(MetadataLost, TellsPicturesByTheirPixels)
{
    const AlbumArt noise = noisePicture(40, 30);
    const QByteArray jpeg = encodedPicture(noise, "jpg");
    const QByteArray png = encodedPicture(readPicture(jpeg).picture, "png");
    ASSERT_NE(jpeg, png);
    EXPECT_EQ(metadataLost(withPictures({jpeg}), withPictures({png}), u"a.flac"_s), std::nullopt);
    // The pixels of a JPEG file are not those that it was made of.
    EXPECT_EQ(metadataLost(withPictures({jpeg}), withPictures({encodedPicture(noise, "png")}), u"a.flac"_s),
              u"a picture is not in the output"_s);
    const QByteArray other = encodedPicture(noisePicture(30, 40), "png");
    EXPECT_EQ(metadataLost(withPictures({jpeg, other}), withPictures({png}), u"a.flac"_s),
              u"a picture is not in the output"_s);
    EXPECT_EQ(metadataLost(withPictures({"no picture"}), withPictures({"none either"}), u"a.flac"_s),
              u"a picture is not in the output"_s);
}

TEST(MetadataLost, TellsPicturesOfEveryDepthByTheirPixels)
{
    const QImage noise = imageOf(noisePicture(20, 20));
    for (const QImage::Format format : {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_Grayscale8,
                                        QImage::Format_Grayscale16, QImage::Format_ARGB32, QImage::Format_RGBA64}) {
        SCOPED_TRACE(static_cast<int>(format));
        const QByteArray source = encodedPicture(noise.convertToFormat(format), "png");
        // As writers of tags do it, but with bytes of its own.
        const QByteArray copy = getBitmapDataForImage(readPicture(source).picture, ImageFileType::Png) + "more";
        EXPECT_EQ(metadataLost(withPictures({source}), withPictures({copy}), u"a.flac"_s), std::nullopt);
    }
}

TEST(MetadataLost, CountsChunksOfOneName)
{
    MetadataInventory source;
    source.foreignChunks = {{u"odd"_s, {"one", "one", "two"}}};
    MetadataInventory output;
    output.foreignChunks = {{u"odd"_s, {"one"}}};
    EXPECT_EQ(metadataLost(source, output, u"a.wav"_s), u"2 chunks (odd) are not in the output"_s);
}
