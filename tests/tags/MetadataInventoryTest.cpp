// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/MetadataInventory.h"

#include "MetadataFixtures.h"
#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "TagFixtures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

using Tags = QMap<QString, QStringList>;

const SoundShape kShort{.seconds = 0.2};

class MetadataInventoryOf : public ::testing::Test {
protected:
    const TestFolder folder;
    const QByteArray png = encodedPicture(noisePicture(16, 16), "png");
    const QString pngFile = folder.write(u"cover.png"_s, png);

    [[nodiscard]] MetadataInventory ofBytes(const QString &name, const QByteArray &bytes) const
    {
        return MetadataInventory::of(folder.write(name, bytes));
    }
    [[nodiscard]] QString flac(const QString &name = u"a.flac"_s) const { return writeFlac(folder.path(name), kShort); }
};

void expectNothing(const MetadataInventory &inventory)
{
    EXPECT_EQ(inventory.tags, Tags());
    EXPECT_TRUE(inventory.pictures.isEmpty());
    EXPECT_TRUE(inventory.foreignChunks.isEmpty()) << qPrintable(inventory.foreignChunks.keys().join(u", "));
}

} // namespace

// Files without metadata

TEST_F(MetadataInventoryOf, HoldsNothingForFilesThatTheEncodersWriteOfThemselves)
{
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.bits = 16, .frames = 4411});
    expectNothing(MetadataInventory::of(wav));
    expectNothing(
        MetadataInventory::of(writeWav(folder.path(u"odd.wav"_s), {.bits = 8, .channels = 1, .frames = 4411})));
    expectNothing(MetadataInventory::of(
        writeWav(folder.path(u"x.wav"_s), {.bits = 24, .channels = 6, .seconds = 0.1, .extensible = true})));
    expectNothing(MetadataInventory::of(writeAiff(folder.path(u"a.aiff"_s), kShort)));
    expectNothing(MetadataInventory::of(flac()));
    expectNothing(MetadataInventory::of(
        writeFlac(folder.path(u"six.flac"_s), {.channels = 6, .seconds = 0.2, .extensible = true})));
    expectNothing(MetadataInventory::of(writeWavpack(folder, u"a.wv"_s)));
    expectNothing(MetadataInventory::of(encodeMonkeysAudio(wav, folder.path(u"a.ape"_s))));
    expectNothing(MetadataInventory::of(encodeShorten(wav, folder.path(u"a.shn"_s))));
    expectNothing(MetadataInventory::of(encodeTta(wav, folder.path(u"a.tta"_s))));
}

TEST_F(MetadataInventoryOf, HoldsNothingForWhatFfmpegStampsOnItsFiles)
{
    for (const QString &name : {u"a.wav"_s, u"a.aiff"_s, u"a.flac"_s, u"a.wv"_s, u"a.tta"_s, u"a.m4a"_s}) {
        SCOPED_TRACE(qPrintable(name));
        expectNothing(MetadataInventory::of(writeByFfmpeg(folder.path(name), kShort)));
    }
    expectNothing(MetadataInventory::of(writeByFfmpeg(folder.path(u"64.wav"_s), kShort, {u"-rf64"_s, u"always"_s})));
    expectNothing(MetadataInventory::of(writeByFfmpeg(folder.path(u"six.aiff"_s), {.channels = 6, .seconds = 0.1})));
}

// Vorbis comments and FLAC blocks

TEST_F(MetadataInventoryOf, ReadsEveryFieldOfAVorbisComment)
{
    const QString path = addFlacTags(flac(), {{u"title"_s, u"Änderung = 東京"_s},
                                              {u"Artist"_s, u"One"_s},
                                              {u"ARTIST"_s, u"Two"_s},
                                              {u"MOOD"_s, u"calm\nand bright"_s},
                                              {u"replaygain_track_gain"_s, u"-7.03 dB"_s},
                                              {u"DESCRIPTION"_s, u"Note"_s},
                                              {u"COMMENT"_s, u"Note"_s},
                                              {u"EMPTY"_s, u""_s},
                                              {u"ENCODER"_s, u"Some encoder"_s},
                                              {u"ENCODED-BY"_s, u"Me"_s}});
    EXPECT_EQ(MetadataInventory::of(path).tags, (Tags{{u"TITLE"_s, {u"Änderung = 東京"_s}},
                                                      {u"ARTIST"_s, {u"One"_s, u"Two"_s}},
                                                      {u"MOOD"_s, {u"calm\nand bright"_s}},
                                                      {u"REPLAYGAIN_TRACK_GAIN"_s, {u"-7.03 dB"_s}},
                                                      {u"COMMENT"_s, {u"Note"_s}}}));
}

TEST_F(MetadataInventoryOf, TakesComposedAndDecomposedLettersForTheSame)
{
    EXPECT_EQ(MetadataInventory::of(addFlacTags(flac(), {{u"TITLE"_s, u"A\u0308rger"_s}})).tags,
              (Tags{{u"TITLE"_s, {u"\u00c4rger"_s}}}));
}

TEST_F(MetadataInventoryOf, ReadsNumbersAndTotalsHoweverTheyAreWritten)
{
    const Tags expected{{u"TRACKNUMBER"_s, {u"5"_s}},
                        {u"TRACKTOTAL"_s, {u"12"_s}},
                        {u"DISCNUMBER"_s, {u"1"_s}},
                        {u"DISCTOTAL"_s, {u"2"_s}}};
    EXPECT_EQ(MetadataInventory::of(addFlacTags(flac(u"a.flac"_s), {{u"TRACKNUMBER"_s, u"05"_s},
                                                                    {u"TRACKTOTAL"_s, u"12"_s},
                                                                    {u"DISCNUMBER"_s, u"1"_s},
                                                                    {u"TOTALDISCS"_s, u"02"_s}}))
                  .tags,
              expected);
    EXPECT_EQ(MetadataInventory::of(
                  addFlacTags(flac(u"b.flac"_s), {{u"TRACKNUMBER"_s, u"5/12"_s}, {u"DISC"_s, u"01 / 02"_s}}))
                  .tags,
              expected);
    EXPECT_EQ(MetadataInventory::of(
                  addFlacTags(flac(u"c.flac"_s),
                              {{u"TRACKNUMBER"_s, u"A5/12"_s}, {u"TRACKTOTAL"_s, u"0"_s}, {u"DISCNUMBER"_s, u"0/0"_s}}))
                  .tags,
              (Tags{{u"TRACKNUMBER"_s, {u"A5/12"_s}}}));
}

TEST_F(MetadataInventoryOf, ReadsPicturesOfBlocksAndOfFields)
{
    const QString path =
        addFlacTags(flac(), {{u"COVERART"_s, QString::fromLatin1(QByteArray("other picture").toBase64())}}, pngFile);
    EXPECT_EQ(MetadataInventory::of(path).pictures, (QByteArrayList{"other picture", png}));
}

TEST_F(MetadataInventoryOf, NamesCueSheetsAndApplicationBlocks)
{
    const QString cue = folder.write(u"a.cue"_s, "FILE \"a.flac\" FLAC\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    const QString path = flac();
    run(u"metaflac"_s, {u"--import-cuesheet-from="_s + cue, path});
    QByteArray bytes = folder.read(u"a.flac"_s);
    // An APPLICATION block behind STREAMINFO.
    bytes.insert(42, QByteArray::fromHex("02000007") + "ATCHxyz");
    const MetadataInventory inventory = ofBytes(u"b.flac"_s, bytes);
    EXPECT_EQ(inventory.foreignChunks.keys(), (QStringList{u"ATCH"_s, u"CUESHEET"_s}));
}

TEST_F(MetadataInventoryOf, ReadsTagsInFrontOfAStreamAndBehindIt)
{
    const QByteArray stream = folder.read(flac().section(u'/', -1));
    const QByteArray front = id3Tag(4, id3Frame("TIT2", "\3Front"));
    const QByteArray behind = id3v1Tag("Behind", "", "", "", "", 0, 255);
    EXPECT_EQ(ofBytes(u"b.flac"_s, front + stream + behind).tags, (Tags{{u"TITLE"_s, {u"Front"_s, u"Behind"_s}}}));
}

// ID3

TEST_F(MetadataInventoryOf, ReadsTheFramesThatFfmpegWrites)
{
    for (const int version : {3, 4}) {
        SCOPED_TRACE(version);
        const QString path = writeTaggedAiff(folder.path(u"a.aiff"_s),
                                             {{u"title"_s, u"Änderung 東京"_s},
                                              {u"artist"_s, u"Band"_s},
                                              {u"album_artist"_s, u"Bands"_s},
                                              {u"date"_s, u"1977-05-08"_s},
                                              {u"track"_s, u"05/12"_s},
                                              {u"disc"_s, u"1/2"_s},
                                              {u"genre"_s, u"Rock"_s},
                                              {u"composer"_s, u"Writer"_s},
                                              {u"mood"_s, u"calm"_s}},
                                             pngFile, version);
        const MetadataInventory inventory = MetadataInventory::of(path);
        EXPECT_EQ(inventory.tags, (Tags{{u"TITLE"_s, {u"Änderung 東京"_s}},
                                        {u"ARTIST"_s, {u"Band"_s}},
                                        {u"ALBUMARTIST"_s, {u"Bands"_s}},
                                        {u"DATE"_s, {u"1977-05-08"_s}},
                                        {u"TRACKNUMBER"_s, {u"5"_s}},
                                        {u"TRACKTOTAL"_s, {u"12"_s}},
                                        {u"DISCNUMBER"_s, {u"1"_s}},
                                        {u"DISCTOTAL"_s, {u"2"_s}},
                                        {u"GENRE"_s, {u"Rock"_s}},
                                        {u"COMPOSER"_s, {u"Writer"_s}},
                                        {u"MOOD"_s, {u"calm"_s}}}));
        EXPECT_EQ(inventory.pictures, QByteArrayList{png});
        folder.remove(u"a.aiff"_s);
    }
}

TEST_F(MetadataInventoryOf, ReadsTheEncodingsOfId3)
{
    using namespace std::string_literals;
    const auto bytes = [](const std::string &text) { return QByteArray::fromStdString(text); };
    const QByteArray frames = id3Frame("TIT2", bytes("\0\xc4rger"s)) + id3Frame("TPE1", bytes("\1\xff\xfe\xc4\0r\0"s))
                              + id3Frame("TALB", bytes("\1\xfe\xff\0\xc4\0r"s))
                              + id3Frame("TCOM", bytes("\2\0\xc4\0r\0\0"s)) + id3Frame("TOPE", bytes("\3one\0two\0"s));
    EXPECT_EQ(ofBytes(u"a.wav"_s, wavBytes(kShort, {}, riffChunk("id3 ", id3Tag(4, frames)))).tags,
              (Tags{{u"TITLE"_s, {u"Ärger"_s}},
                    {u"ARTIST"_s, {u"Är"_s}},
                    {u"ALBUM"_s, {u"Är"_s}},
                    {u"COMPOSER"_s, {u"Är"_s}},
                    {u"ORIGINALARTIST"_s, {u"one"_s, u"two"_s}}}));
}

TEST_F(MetadataInventoryOf, ReadsEveryKindOfFrame)
{
    using namespace std::string_literals;
    const auto bytes = [](const std::string &text) { return QByteArray::fromStdString(text); };
    const QByteArray frames = id3Frame("TCON", "\3(17)(4)Other kind") + id3Frame("TYER", bytes("\0"s) + "1977")
                              + id3Frame("TDAT", bytes("\0"s) + "0805") + id3Frame("COMM", bytes("\0eng\0Note"s))
                              + id3Frame("COMM", bytes("\0eng"s) + bytes("iTunNORM\0 0001"s))
                              + id3Frame("COMM", bytes("\0eng"s) + bytes("iTunSMPB\0 0001"s))
                              + id3Frame("USLT", bytes("\1eng\xff\xfe\0\0\xff\xfel\0a\0"s))
                              + id3Frame("TXXX", bytes("\3Mood\0calm"s)) + id3Frame("WXXX", bytes("\3Shop\0http://x"s))
                              + id3Frame("WOAR", "http://y") + id3Frame("UFID", bytes("http://z\0id"s))
                              + id3Frame("POPM", bytes("me\0\xff"s))
                              + id3Frame("APIC", bytes("\1image/png\0\3\xff\xfe"
                                                       "f\0\0\0"s)
                                                     + "picture")
                              + id3Frame("TSSE", "\3encoder")
                              + id3Frame("TLEN", "\3"
                                                 "200");
    const MetadataInventory inventory =
        ofBytes(u"a.aiff"_s, withAiffChunks(aiffBytes(kShort), aiffChunk("ID3 ", id3Tag(3, frames))));
    EXPECT_EQ(inventory.pictures, QByteArrayList{"picture"});
    Tags tags = inventory.tags;
    EXPECT_EQ(tags.take(u"POPM"_s).size(), 1);
    EXPECT_EQ(tags.take(u"UFID http://z"_s).size(), 1);
    EXPECT_EQ(tags, (Tags{{u"GENRE"_s, {u"Rock"_s, u"Disco"_s, u"Other kind"_s}},
                          {u"DATE"_s, {u"1977-05-08"_s}},
                          {u"COMMENT"_s, {u"Note"_s}},
                          {u"ITUNNORM"_s, {u" 0001"_s}},
                          {u"LYRICS"_s, {u"la"_s}},
                          {u"MOOD"_s, {u"calm"_s}},
                          {u"SHOP"_s, {u"http://x"_s}},
                          {u"ARTISTWEBPAGE"_s, {u"http://y"_s}}}));
}

TEST_F(MetadataInventoryOf, ReadsTheFormerVersionOfId3AndUnsynchronisedTags)
{
    using namespace std::string_literals;
    const QByteArray old =
        QByteArray::fromStdString("TT2\0\0\5\0SongTRK\0\0\5\0"s + "5/12PIC\0\0\x0d\0PNG\3\0picture"s);
    const MetadataInventory inventory = ofBytes(u"a.tta"_s, id3Tag(2, old) + "TTA1");
    EXPECT_EQ(inventory.tags,
              (Tags{{u"TITLE"_s, {u"Song"_s}}, {u"TRACKNUMBER"_s, {u"5"_s}}, {u"TRACKTOTAL"_s, {u"12"_s}}}));
    EXPECT_EQ(inventory.pictures, QByteArrayList{"picture"});

    // A zero stands behind each 0xff.
    const QByteArray frame = id3Frame("TIT2", QByteArray::fromStdString("\1\xff\xfe\xff\0a\0"s));
    QByteArray unsynchronised = frame;
    unsynchronised.replace("\xff", QByteArray("\xff\0", 2));
    EXPECT_EQ(ofBytes(u"b.tta"_s, id3Tag(3, unsynchronised, 0x80) + "TTA1").tags,
              (Tags{{u"TITLE"_s, {u"\u00ff\u0061"_s}}}));
}

TEST_F(MetadataInventoryOf, TakesFramesThatItCannotReadByTheirBytes)
{
    const auto tags = [&](const QByteArray &contents, int flags) {
        return ofBytes(u"a.tta"_s, id3Tag(4, id3Frame("TIT2", contents, flags)) + "TTA1").tags.value(u"TITLE"_s);
    };
    const QStringList compressed = tags("some bytes", 0x08);
    EXPECT_EQ(compressed.size(), 1);
    EXPECT_EQ(tags("some bytes", 0x04), compressed);
    EXPECT_NE(tags("other bytes", 0x04), compressed);
}

TEST_F(MetadataInventoryOf, LeavesOutAnId3v1TagThatOnlyRepeats)
{
    const QString path =
        addWavPackTags(writeWavpack(folder, u"a.wv"_s), {{u"Title"_s, u"A title of more than thirty characters"_s},
                                                         {u"Artist"_s, u"Dvořák"_s},
                                                         {u"Album"_s, u"Ärger"_s},
                                                         {u"Year"_s, u"1977-05-08"_s},
                                                         {u"Track"_s, u"5/12"_s},
                                                         {u"Genre"_s, u"Chamber folk"_s}});
    const MetadataInventory before = MetadataInventory::of(path);
    const QByteArray tag =
        id3v1Tag("A title of more than thirty characters", "Dvo?\xe1k", "\xc3\x84rger", "1977", "", 5, 12);
    EXPECT_EQ(ofBytes(u"b.wv"_s, folder.read(u"a.wv"_s) + tag).tags, before.tags);
    const QByteArray other = id3v1Tag("A title of other words", "", "", "1978", "Note", 5, 12);
    Tags expected = before.tags;
    expected[u"TITLE"_s] << u"A title of other words"_s;
    expected[u"DATE"_s] << u"1978"_s;
    expected[u"COMMENT"_s] = QStringList{u"Note"_s};
    EXPECT_EQ(ofBytes(u"c.wv"_s, folder.read(u"a.wv"_s) + other).tags, expected);
}

TEST_F(MetadataInventoryOf, ReadsAnId3v1TagThatStandsAlone)
{
    EXPECT_EQ(
        ofBytes(u"a.tta"_s, "TTA1" + QByteArray(200, 'x') + id3v1Tag("Song", "Band", "Album", "1977", "Note", 5, 17))
            .tags,
        (Tags{{u"TITLE"_s, {u"Song"_s}},
              {u"ARTIST"_s, {u"Band"_s}},
              {u"ALBUM"_s, {u"Album"_s}},
              {u"DATE"_s, {u"1977"_s}},
              {u"COMMENT"_s, {u"Note"_s}},
              {u"TRACKNUMBER"_s, {u"5"_s}},
              {u"GENRE"_s, {u"Rock"_s}}}));
}

// APE tags

TEST_F(MetadataInventoryOf, ReadsTheItemsOfAnApeTag)
{
    const QString path = addWavPackTags(writeWavpack(folder, u"a.wv"_s),
                                        {{u"Title"_s, u"Änderung 東京"_s},
                                         {u"Album Artist"_s, u"Bands"_s},
                                         {u"Track"_s, u"05/12"_s},
                                         {u"Year"_s, u"1977-05-08"_s},
                                         {u"Cuesheet"_s, u"FILE a"_s}},
                                        pngFile);
    const Tags expected{{u"TITLE"_s, {u"Änderung 東京"_s}}, {u"ALBUMARTIST"_s, {u"Bands"_s}},
                        {u"TRACKNUMBER"_s, {u"5"_s}},       {u"TRACKTOTAL"_s, {u"12"_s}},
                        {u"DATE"_s, {u"1977-05-08"_s}},     {u"CUESHEET"_s, {u"FILE a"_s}}};
    EXPECT_EQ(MetadataInventory::of(path).tags, expected);
    EXPECT_EQ(MetadataInventory::of(path).pictures, QByteArrayList{png});

    const QString wav = writeWav(folder.path(u"a.wav"_s), kShort);
    for (const QString &file :
         {encodeMonkeysAudio(wav, folder.path(u"a.ape"_s)), encodeTta(wav, folder.path(u"a.tta"_s)),
          encodeShorten(wav, folder.path(u"a.shn"_s)), flac()}) {
        copyApeTag(path, file);
        EXPECT_EQ(MetadataInventory::of(file).tags, expected) << qPrintable(file);
        EXPECT_EQ(MetadataInventory::of(file).pictures, QByteArrayList{png}) << qPrintable(file);
        EXPECT_TRUE(MetadataInventory::of(file).foreignChunks.isEmpty()) << qPrintable(file);
    }
}

TEST_F(MetadataInventoryOf, ReadsTheTagsThatFfmpegPutsBehindATtaFile)
{
    const QString path = writeByFfmpeg(folder.path(u"a.tta"_s), kShort,
                                       {u"-metadata"_s, u"title=Song"_s, u"-metadata"_s, u"track=5/12"_s});
    EXPECT_EQ(MetadataInventory::of(path).tags,
              (Tags{{u"TITLE"_s, {u"Song"_s}}, {u"TRACKNUMBER"_s, {u"5"_s}}, {u"TRACKTOTAL"_s, {u"12"_s}}}));
}

TEST_F(MetadataInventoryOf, ReadsTagsThatStandBehindOneAnother)
{
    using namespace std::string_literals;
    // An APE tag of the first version, which has Latin-1 and no header; an ID3v2 tag with its footer.
    const QByteArray item = QByteArray::fromStdString("\5\0\0\0\0\0\0\0Artist\0B\xe4nds"s);
    const QByteArray apeTag = item + "APETAGEX" + QByteArray::fromHex("e8030000") + char(32 + item.size())
                              + QByteArray::fromHex("000000"
                                                    "01000000"
                                                    "00000000")
                              + QByteArray(8, '\0');
    QByteArray front = id3Tag(4, id3Frame("TIT2", "\3Song"), 0x10);
    const QByteArray id3 = front + "3DI" + front.mid(3, 7);
    const QByteArray lyrics = "LYRICSBEGININD0000200000021LYRICS200";
    const MetadataInventory inventory = ofBytes(u"a.tta"_s, "TTA1" + QByteArray(50, 'x') + id3 + apeTag + lyrics
                                                                + id3v1Tag("", "", "Album", "", "", 0, 255));
    EXPECT_EQ(inventory.tags.keys(), (QStringList{u"ALBUM"_s, u"ARTIST"_s, u"LYRICS3"_s, u"TITLE"_s}));
    EXPECT_EQ(inventory.tags.value(u"ARTIST"_s), QStringList{u"Bänds"_s});
    EXPECT_EQ(inventory.tags.value(u"TITLE"_s), QStringList{u"Song"_s});
}

// MPEG-4

TEST_F(MetadataInventoryOf, ReadsTheItemsOfAnMp4File)
{
    const QString other = folder.write(u"other.jpg"_s, encodedPicture(noisePicture(9, 9), "jpg"));
    const QString path = addMp4Tags(writeM4a(folder, u"a.m4a"_s), {{u"--title"_s, u"Änderung 東京"_s},
                                                                   {u"--artist"_s, u"Band"_s},
                                                                   {u"--albumArtist"_s, u"Bands"_s},
                                                                   {u"--year"_s, u"1977-05-08T00:00:00Z"_s},
                                                                   {u"--tracknum"_s, u"5/12"_s},
                                                                   {u"--disk"_s, u"1"_s},
                                                                   {u"--genre"_s, u"Rock"_s},
                                                                   {u"--composer"_s, u"Writer"_s},
                                                                   {u"--bpm"_s, u"120"_s},
                                                                   {u"--compilation"_s, u"true"_s},
                                                                   {u"--gapless"_s, u"true"_s},
                                                                   {u"--encodingTool"_s, u"Me"_s},
                                                                   {u"--sortOrder"_s, u"artist"_s},
                                                                   {u"Band, The"_s, u"--artwork"_s},
                                                                   {pngFile, u"--artwork"_s},
                                                                   {other, u"--comment"_s},
                                                                   {u"Note"_s, u"--grouping"_s},
                                                                   {u"Group"_s, u"--lyrics"_s},
                                                                   {u"la la"_s, u"--overWrite"_s}});
    const MetadataInventory inventory = MetadataInventory::of(path);
    EXPECT_EQ(inventory.tags, (Tags{{u"TITLE"_s, {u"Änderung 東京"_s}},
                                    {u"ARTIST"_s, {u"Band"_s}},
                                    {u"ALBUMARTIST"_s, {u"Bands"_s}},
                                    {u"DATE"_s, {u"1977-05-08T00:00:00Z"_s}},
                                    {u"TRACKNUMBER"_s, {u"5"_s}},
                                    {u"TRACKTOTAL"_s, {u"12"_s}},
                                    {u"DISCNUMBER"_s, {u"1"_s}},
                                    {u"GENRE"_s, {u"Rock"_s}},
                                    {u"COMPOSER"_s, {u"Writer"_s}},
                                    {u"BPM"_s, {u"120"_s}},
                                    {u"COMPILATION"_s, {u"1"_s}},
                                    {u"ARTISTSORT"_s, {u"Band, The"_s}},
                                    {u"COMMENT"_s, {u"Note"_s}},
                                    {u"GROUPING"_s, {u"Group"_s}},
                                    {u"LYRICS"_s, {u"la la"_s}}}));
    EXPECT_EQ(inventory.pictures, (QByteArrayList{png, folder.read(u"other.jpg"_s)}));
    EXPECT_TRUE(inventory.foreignChunks.isEmpty());
}

TEST_F(MetadataInventoryOf, ReadsFreeFormAndUnknownItemsOfAnMp4File)
{
    const auto freeForm = [](const QByteArray &name, const QByteArray &value) {
        const QByteArray flags(4, '\0');
        return boxBytes("----", boxBytes("mean", flags + "com.apple.iTunes") + boxBytes("name", flags + name)
                                    + boxBytes("data", bigEndian32(1) + flags + value));
    };
    writeM4a(folder, u"a.m4a"_s);
    const QByteArray file = withItems(
        folder.read(u"a.m4a"_s), freeForm("Mood", "calm") + freeForm("iTunSMPB", "0000") + itemBytes("abcd", 21, "\x05")
                                     + itemBytes("rtng", 21, QByteArray(1, '\0')) + itemBytes("\251xyz", 1, "Text")
                                     + itemBytes("efgh", 99, "bytes of no known type"));
    Tags tags = ofBytes(u"b.m4a"_s, file).tags;
    EXPECT_EQ(tags.take(u"efgh"_s).size(), 1);
    EXPECT_EQ(tags, (Tags{{u"MOOD"_s, {u"calm"_s}}, {u"abcd"_s, {u"5"_s}}, {u"©xyz"_s, {u"Text"_s}}}));
}

TEST_F(MetadataInventoryOf, NamesChaptersAndOtherPartsOfAnMp4File)
{
    const QString chapters =
        folder.write(u"chapters"_s, ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=100\ntitle=One\n");
    writeM4a(folder, u"plain.m4a"_s);
    run(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, folder.path(u"plain.m4a"_s), u"-i"_s, chapters, u"-map_metadata"_s,
                      u"1"_s, u"-c"_s, u"copy"_s, folder.path(u"a.m4a"_s)});
    const QByteArray file = folder.read(u"a.m4a"_s) + boxBytes("uuid", "sixteen bytes...and more")
                            + boxBytes("free", "any") + boxBytes("mdat", "") + id3v1Tag("Song", "", "", "", "", 0, 255);
    const MetadataInventory inventory = ofBytes(u"b.m4a"_s, file);
    EXPECT_EQ(inventory.foreignChunks.keys(), (QStringList{u"chpl"_s, u"text"_s, u"uuid"_s}));
    EXPECT_EQ(inventory.tags, (Tags{{u"TITLE"_s, {u"Song"_s}}}));
}

// What cannot be told

TEST_F(MetadataInventoryOf, FailsForWhatIsNoSoundFile)
{
    const auto reasonFor = [](const QString &path) {
        return failureOf([&] { static_cast<void>(MetadataInventory::of(path)); });
    };
    EXPECT_EQ(reasonFor(folder.path(u"missing.wav"_s)), u"it cannot be opened: No such file or directory"_s);
    EXPECT_EQ(reasonFor(folder.path()), u"it is no regular file"_s);
    EXPECT_EQ(reasonFor(folder.write(u"empty.wav"_s, {})), u"it is no sound file of a known kind"_s);
    EXPECT_EQ(reasonFor(folder.write(u"text.wav"_s, "just some text")), u"it is no sound file of a known kind"_s);
}

TEST_F(MetadataInventoryOf, FailsForDamagedTags)
{
    const auto reasonFor = [&](const QByteArray &bytes) {
        return failureOf([&] { static_cast<void>(ofBytes(u"damaged"_s, bytes)); });
    };
    const QByteArray wavPack =
        folder.read(addWavPackTags(writeWavpack(folder, u"a.wv"_s), {{u"Title"_s, u"Song"_s}}).section(u'/', -1));
    QByteArray longItem = wavPack;
    longItem[longItem.indexOf("Title") - 6] = '\x7f';
    EXPECT_EQ(reasonFor(longItem), u"its APE tag is damaged"_s);
    const QByteArray stream = folder.read(flac().section(u'/', -1));
    EXPECT_EQ(reasonFor(stream.left(60)), u"its FLAC metadata is damaged"_s);
    EXPECT_EQ(reasonFor(id3Tag(4, id3Frame("TIT2", "\3Song") + "junk") + stream), u"its ID3 tag is damaged"_s);
    EXPECT_EQ(reasonFor(id3Tag(4, id3Frame("TIT2", "\3Song")).left(30)), u"it breaks off in its tags"_s);
    EXPECT_EQ(reasonFor(id3Tag(5, {}) + stream), u"its ID3 tag has an unknown version"_s);
    writeM4a(folder, u"a.m4a"_s);
    const QByteArray mp4 = folder.read(u"a.m4a"_s);
    EXPECT_EQ(reasonFor(mp4 + "some more bytes"), u"its boxes are damaged"_s);
    EXPECT_EQ(reasonFor(mp4.left(mp4.size() - 10)), u"its movie box is missing or damaged"_s);
    EXPECT_EQ(
        reasonFor(edited(mp4, {"moov", "udta", "meta"}, [](const QByteArray &contents) { return contents + "xx"; })),
        u"its metadata items are damaged or of another kind"_s);
}
