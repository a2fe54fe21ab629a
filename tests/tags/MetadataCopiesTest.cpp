// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AACTagsHelper.h"
#include "tags/FlacTagHelper.h"
#include "tags/MetadataInventory.h"
#include "tags/TagLibTagsHelper.h"

#include "MetadataFixtures.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

/// A track of an album, tagged by a program that knows nothing of ours, in a file of each kind.
struct Source {
    const char *name;
    QString (*make)(const TestFolder &, const QString &cover);
    TagsObject (*read)(const QString &);
};

/// A file of each kind, and how the jobs write the tags of others into it.
struct Target {
    const char *name;
    QString (*make)(const TestFolder &);
    void (*write)(const QString &, const TagsObject &);
};

/// `lost` is what really gets lost: what the records or the writers have no field for.
struct Copy {
    Source source;
    Target target;
    const char *lost;
};

void PrintTo(const Copy &copy, std::ostream *stream)
{
    *stream << copy.source.name << "To" << copy.target.name;
}

const Fields kWords{{u"title"_s, u"Änderung 東京"_s},
                    {u"artist"_s, u"Sigur Rós"_s},
                    {u"album"_s, u"Album"_s},
                    {u"genre"_s, u"Chamber folk"_s},
                    {u"date"_s, u"1977"_s},
                    {u"track"_s, u"5/12"_s},
                    {u"disc"_s, u"1/2"_s},
                    {u"comment"_s, u"Note"_s},
                    {u"composer"_s, u"Dvořák"_s}};

QString taggedFlac(const TestFolder &folder, const QString &cover)
{
    return addFlacTags(writeTaggableFlac(folder, u"source.flac"_s),
                       {{u"TITLE"_s, u"Änderung 東京"_s},
                        {u"ARTIST"_s, u"Sigur Rós"_s},
                        {u"ALBUM"_s, u"Album"_s},
                        {u"GENRE"_s, u"Chamber folk"_s},
                        {u"DATE"_s, u"1977"_s},
                        {u"TRACKNUMBER"_s, u"5"_s},
                        {u"TRACKTOTAL"_s, u"12"_s},
                        {u"DISCNUMBER"_s, u"1"_s},
                        {u"DISCTOTAL"_s, u"2"_s},
                        {u"COMMENT"_s, u"Note"_s},
                        {u"COMPOSER"_s, u"Dvořák"_s}},
                       cover);
}

QString taggedWavPack(const TestFolder &folder, const QString &cover)
{
    return addWavPackTags(writeWavpack(folder, u"source.wv"_s),
                          {{u"Title"_s, u"Änderung 東京"_s},
                           {u"Artist"_s, u"Sigur Rós"_s},
                           {u"Album"_s, u"Album"_s},
                           {u"Genre"_s, u"Chamber folk"_s},
                           {u"Year"_s, u"1977"_s},
                           {u"Track"_s, u"5/12"_s},
                           {u"Disc"_s, u"1/2"_s},
                           {u"Comment"_s, u"Note"_s},
                           {u"Composer"_s, u"Dvořák"_s}},
                          cover);
}

QString taggedApe(const TestFolder &folder, const QString &cover)
{
    const QString path =
        encodeMonkeysAudio(writeWav(folder.path(u"source.wav"_s), {.seconds = 0.5}), folder.path(u"source.ape"_s));
    copyApeTag(taggedWavPack(folder, cover), path);
    return path;
}

QString taggedMp4(const TestFolder &folder, const QString &cover)
{
    return addMp4Tags(writeM4a(folder, u"source.m4a"_s), {{u"--title"_s, u"Änderung 東京"_s},
                                                          {u"--artist"_s, u"Sigur Rós"_s},
                                                          {u"--album"_s, u"Album"_s},
                                                          {u"--genre"_s, u"Chamber folk"_s},
                                                          {u"--year"_s, u"1977"_s},
                                                          {u"--tracknum"_s, u"5/12"_s},
                                                          {u"--disk"_s, u"1/2"_s},
                                                          {u"--comment"_s, u"Note"_s},
                                                          {u"--composer"_s, u"Dvořák"_s},
                                                          {u"--artwork"_s, cover}});
}

/// As ffmpeg does it, with the comment in a frame of a name in words.
QString taggedAiffByFfmpeg(const TestFolder &folder, const QString &cover)
{
    return writeTaggedAiff(folder.path(u"source.aiff"_s), kWords, cover, 4);
}

/// With a comment frame, which ffmpeg does not write, in the place of one of that length.
QString taggedAiff(const TestFolder &folder, const QString &cover)
{
    Fields fields = kWords;
    for (auto &[name, value] : fields)
        name = name == u"comment"_s ? u"remarks"_s : name;
    writeTaggedAiff(folder.path(u"source.aiff"_s), fields, cover, 4);
    QByteArray bytes = folder.read(u"source.aiff"_s);
    const qsizetype name = bytes.indexOf(QByteArray("remarks\0", 8));
    EXPECT_EQ(bytes.mid(name - 11, 4), "TXXX");
    bytes.replace(name - 11, 4, "COMM");
    bytes.replace(name, 8, QByteArray("eng\0Some", 8));
    return folder.write(u"source.aiff"_s, bytes);
}

const Source kFlac{"Flac", taggedFlac, TagLibTagsHelper::tagsForFlacFile};
const Source kAiff{"Aiff", taggedAiff, TagLibTagsHelper::tagsForAIFFFile};
const Source kAiffByFfmpeg{"AiffByFfmpeg", taggedAiffByFfmpeg, TagLibTagsHelper::tagsForAIFFFile};
const Source kWavPack{"WavPack", taggedWavPack, TagLibTagsHelper::tagsForWavpackFile};
const Source kApe{"MonkeysAudio", taggedApe, TagLibTagsHelper::tagsForAPEFile};
const Source kMp4{"AppleLossless", taggedMp4, AACTagsHelper::tagsForFile};

QString plainFlac(const TestFolder &folder)
{
    return writeTaggableFlac(folder, u"target.flac"_s);
}

/// Of AIFF files, which a tag of its own replaces.
const Target kToFlacAnew{"Flac", plainFlac, [](const QString &path, const TagsObject &tags) {
                             TagLibTagsHelper::writeTagsForFLACFile(path, tags, true);
                         }};
const Target kToFlac{"Flac", plainFlac, [](const QString &path, const TagsObject &tags) {
                         TagLibTagsHelper::writeTagsForFLACFile(path, tags, false);
                     }};
const Target kToFlacByMetaflac{"Flac", plainFlac, [](const QString &path, const TagsObject &tags) {
                                   FlacTagHelper::writeTagsForFile(path, tags, false);
                               }};
const Target kToAiff{"Aiff", [](const TestFolder &folder) { return writeTaggableAiff(folder, u"target.aiff"_s); },
                     TagLibTagsHelper::writeTagsForAIFFFile};
const Target kToWavPack{
    "WavPack", [](const TestFolder &folder) { return writeWavpack(folder, u"target.wv"_s); },
    [](const QString &path, const TagsObject &tags) { TagLibTagsHelper::writeTagsForWavpackFile(path, tags, false); }};
const Target kToApe{
    "MonkeysAudio",
    [](const TestFolder &folder) {
        return encodeMonkeysAudio(writeWav(folder.path(u"target.wav"_s), {.seconds = 0.5}),
                                  folder.path(u"target.ape"_s));
    },
    [](const QString &path, const TagsObject &tags) { TagLibTagsHelper::writeTagsForAPEFile(path, tags, false); }};
const Target kToMp4{"AppleLossless", [](const TestFolder &folder) { return writeM4a(folder, u"target.m4a"_s); },
                    [](const QString &path, const TagsObject &tags) {
                        AACTagsHelper::writeTagsForFile(path, tags, false, true);
                        AACTagsHelper::makeGapless(path);
                    }};

/// Records that were read of, or are written into, APE tags have seven fields.
const char *const kBeyondSevenFields =
    "4 tags (COMPOSER, DISCNUMBER, DISCTOTAL and 1 more) and a picture are not in the output";

const Copy kCopies[] = {
    {kAiff, kToFlacAnew, ""},
    {kAiffByFfmpeg, kToFlacAnew, "a tag (COMMENT) is not in the output"},
    {kApe, kToFlac, kBeyondSevenFields},
    {kMp4, kToFlacByMetaflac, "2 tags (DISCTOTAL, TRACKTOTAL) and a picture are not in the output"},
    {kWavPack, kToFlacByMetaflac, kBeyondSevenFields},
    {kMp4, kToWavPack, kBeyondSevenFields},
    {kMp4, kToApe, kBeyondSevenFields},
    {kFlac, kToMp4, ""},
    {kAiff, kToMp4, ""},
    {kWavPack, kToMp4, kBeyondSevenFields},
    {kApe, kToMp4, kBeyondSevenFields},
    {kFlac, kToAiff, ""},
    {kMp4, kToAiff, ""},
};

class MetadataCopies : public ::testing::TestWithParam<Copy> {
protected:
    const TestFolder folder;

    /// The sentence; empty when nothing is lost.
    [[nodiscard]] QString lostOf(const QString &source, const TagsObject &record) const
    {
        const QString target = GetParam().target.make(folder);
        GetParam().target.write(target, record);
        return metadataLost(MetadataInventory::of(source), MetadataInventory::of(target), target).value_or(QString());
    }
};

} // namespace

TEST_P(MetadataCopies, LoseOnlyWhatTheRecordHasNoFieldFor)
{
    // The writers make a PNG picture of it.
    const QString cover = folder.write(u"cover.jpg"_s, encodedPicture(noisePicture(64, 48), "jpg"));
    const QString source = GetParam().source.make(folder, cover);
    const MetadataInventory inventory = MetadataInventory::of(source);
    EXPECT_EQ(inventory.tags.size(), 11) << qPrintable(inventory.tags.keys().join(u' '));
    EXPECT_EQ(inventory.pictures.size(), 1);
    EXPECT_EQ(lostOf(source, GetParam().source.read(source)), QString::fromUtf8(GetParam().lost));
}

INSTANTIATE_TEST_SUITE_P(Jobs, MetadataCopies, ::testing::ValuesIn(kCopies), [](const auto &copy) {
    return std::string(copy.param.source.name) + "To" + copy.param.target.name;
});

// What the record has fields for, but the job does not write

TEST(MetadataCopiesOfOtherFields, LoseTheDayOfADateInAiffFiles)
{
    const TestFolder folder;
    const QString source = addFlacTags(writeTaggableFlac(folder, u"a.flac"_s),
                                       {{u"DATE"_s, u"1977-05-08"_s}, {u"ALBUMARTIST"_s, u"Bands"_s}});
    const QString target = writeTaggableAiff(folder, u"a.aiff"_s);
    TagLibTagsHelper::writeTagsForAIFFFile(target, TagLibTagsHelper::tagsForFlacFile(source));
    EXPECT_EQ(metadataLost(MetadataInventory::of(source), MetadataInventory::of(target), target),
              u"a tag (DATE) is not in the output"_s);
}

TEST(MetadataCopiesOfOtherFields, LoseAnAlbumArtistThatIsNotTheArtistInMp4Files)
{
    const TestFolder folder;
    const auto lost = [&](const QString &artist, const QString &albumArtist) {
        const QString source = addFlacTags(writeTaggableFlac(folder, u"a.flac"_s),
                                           {{u"ARTIST"_s, artist}, {u"ALBUMARTIST"_s, albumArtist}});
        const QString target = writeM4a(folder, u"a.m4a"_s);
        AACTagsHelper::writeTagsForFile(target, TagLibTagsHelper::tagsForFlacFile(source), false, true);
        const auto sentence = metadataLost(MetadataInventory::of(source), MetadataInventory::of(target), target);
        folder.remove(u"a.flac"_s);
        folder.remove(u"a.m4a"_s);
        return sentence;
    };
    EXPECT_EQ(lost(u"Band"_s, u"Bands"_s), u"a tag (ALBUMARTIST) is not in the output"_s);
    EXPECT_EQ(lost(u"Band"_s, u"Band"_s), std::nullopt);
}

TEST(MetadataCopiesOfOtherFields, KeepTheTagsOfAnAppleLosslessFileThatWasMadeOfAFlacFile)
{
    const TestFolder folder;
    const QString cover = folder.write(u"cover.png"_s, encodedPicture(noisePicture(9, 9), "png"));
    const QString mp4 = writeM4a(folder, u"a.m4a"_s);
    AACTagsHelper::writeTagsForFile(mp4, TagLibTagsHelper::tagsForFlacFile(taggedFlac(folder, cover)), false, true);
    const QString aiff = writeTaggableAiff(folder, u"a.aiff"_s);
    TagLibTagsHelper::writeTagsForAIFFFile(aiff, AACTagsHelper::tagsForFile(mp4));
    EXPECT_EQ(metadataLost(MetadataInventory::of(mp4), MetadataInventory::of(aiff), aiff), std::nullopt);
}

TEST(MetadataCopiesOfOtherFields, LoseWhatTheRecordDoesNotKnow)
{
    const TestFolder folder;
    const QString source = addFlacTags(writeTaggableFlac(folder, u"a.flac"_s),
                                       {{u"MOOD"_s, u"calm"_s}, {u"TITLE"_s, u"Song"_s}, {u"WORK"_s, u"Opus"_s}});
    const QString target = writeM4a(folder, u"a.m4a"_s);
    AACTagsHelper::writeTagsForFile(target, TagLibTagsHelper::tagsForFlacFile(source), false, true);
    EXPECT_EQ(metadataLost(MetadataInventory::of(source), MetadataInventory::of(target), target),
              u"2 tags (MOOD, WORK) are not in the output"_s);
}
