// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagBombs.h"

#include "MetadataFixtures.h"
#include "support/AudioFixtures.h"
#include "support/LimitedRun.h"
#include "TagFixtures.h"
#include "tags/TagLibTagsHelper.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

constexpr int kMemoryMiB = 256;
constexpr int kSeconds = 20;

using Reader = TagsObject (*)(const QString &);

/// 256 MiB in a few hundred thousand bytes.
const QByteArray &bomb()
{
    static const QByteArray stream = compressedZeros(std::int64_t{256} << 20);
    return stream;
}

/// One way for an ID3v2 tag to come into a file.
struct Container {
    const char *name;
    QByteArray (*around)(const TestFolder &, const QByteArray &tag);
    Reader read;
};

void PrintTo(const Container &container, std::ostream *stream)
{
    *stream << container.name;
}

const Container kContainers[] = {
    {"Aiff",
     [](const TestFolder &, const QByteArray &tag) {
         return withAiffChunks(aiffBytes({.seconds = 0.1}), aiffChunk("ID3 ", tag));
     },
     TagLibTagsHelper::tagsForAIFFFile},
    {"Mp3",
     [](const TestFolder &folder, const QByteArray &tag) {
         writeMp3(folder, u"plain.mp3"_s);
         return tag + folder.read(u"plain.mp3"_s);
     },
     TagLibTagsHelper::tagsForMP3File},
    {"Mp3BehindOtherBytes",
     [](const TestFolder &folder, const QByteArray &tag) {
         writeMp3(folder, u"plain.mp3"_s);
         return "xxxxx" + tag + folder.read(u"plain.mp3"_s);
     },
     TagLibTagsHelper::tagsForMP3File},
    {"Tta",
     [](const TestFolder &folder, const QByteArray &tag) {
         encodeTta(writeWav(folder.path(u"plain.wav"_s), {.seconds = 0.1}), folder.path(u"plain.tta"_s));
         return tag + folder.read(u"plain.tta"_s);
     },
     TagLibTagsHelper::tagsForTTAFile},
    {"Flac",
     [](const TestFolder &folder, const QByteArray &tag) {
         writeTaggableFlac(folder, u"plain.flac"_s);
         return tag + folder.read(u"plain.flac"_s);
     },
     TagLibTagsHelper::tagsForFlacFile}};

/// What becomes of reading it within the limits: why not, or the title.
QString outcome(const QString &path, Reader read)
{
    return runLimited(kMemoryMiB, kSeconds, [&] {
        try {
            return u"title: "_s + read(path).titleText().value_or(u"none"_s);
        } catch (const NurvFailure &failure) {
            return failure.reason();
        }
    });
}

class Id3Bomb : public ::testing::TestWithParam<Container> {
protected:
    const TestFolder folder;

    [[nodiscard]] QString outcomeOf(const QByteArray &tag) const
    {
        return outcome(folder.write(u"bomb"_s, GetParam().around(folder, tag)), GetParam().read);
    }
};

const QString kInflates = u"its ID3 tag is not to be trusted: its compressed frames inflate to more than 32 MiB"_s;
const QString kCountless = u"its ID3 tag is not to be trusted: it has more than 10000 frames"_s;

QByteArray chapter(int version, const QByteArray &frames)
{
    return longId3Frame(version, "CHAP", QByteArray("a\0", 2) + QByteArray(16, '\0') + frames);
}

QByteArray chapterTable(int version, const QByteArray &frames)
{
    return longId3Frame(version, "CTOC", QByteArray("t\0\3\1a\0", 6) + frames);
}

} // namespace

TEST_P(Id3Bomb, IsRefusedWhenAFrameInflatesTooFar)
{
    for (const int version : {3, 4}) {
        for (const std::uint32_t declared : {0x10000000U - 1, 10U})
            EXPECT_EQ(outcomeOf(longId3Tag(version, compressedId3Frame(version, "TIT2", bomb(), declared))), kInflates);
    }
}

TEST_P(Id3Bomb, IsRefusedWhenItIsUnsynchronised)
{
    const auto unsynchronised = [](QByteArray bytes) { return bytes.replace("\xff", QByteArray("\xff\0", 2)); };
    // Version 3 counts its bytes before, version 4 afterwards.
    const QByteArray whole = unsynchronised(compressedId3Frame(3, "APIC", bomb(), 10));
    EXPECT_EQ(outcomeOf(longId3Tag(3, whole, 0x80)), kInflates);
    EXPECT_EQ(outcomeOf(longId3Tag(4, compressedId3Frame(4, "APIC", unsynchronised(bomb()), 10), 0x80)), kInflates);
}

TEST_P(Id3Bomb, IsRefusedWhenManyFramesInflateTooFarTogether)
{
    const QByteArray frame = compressedId3Frame(4, "TXXX", compressedZeros(std::int64_t{4} << 20), std::uint32_t{4} << 20);
    EXPECT_EQ(outcomeOf(longId3Tag(4, frame.repeated(40))), kInflates);
}

TEST_P(Id3Bomb, IsRefusedWhenABombStandsInAChapter)
{
    const QByteArray frame = compressedId3Frame(4, "TIT2", bomb(), 10);
    EXPECT_EQ(outcomeOf(longId3Tag(4, chapter(4, frame))), kInflates);
    EXPECT_EQ(outcomeOf(longId3Tag(4, chapterTable(4, frame))), kInflates);
}

TEST_P(Id3Bomb, IsRefusedWhenItHasCountlessFrames)
{
    const QByteArray one = longId3Frame(3, "TXXX", "\3");
    EXPECT_EQ(outcomeOf(longId3Tag(3, one.repeated(2'000'000))), kCountless);
    EXPECT_EQ(outcomeOf(longId3Tag(3, chapter(3, one.repeated(2'000'000)))), kCountless);
    const QByteArray shortOne("TT2\0\0\1\3", 7);
    EXPECT_EQ(outcomeOf(longId3Tag(2, shortOne.repeated(2'000'000))), kCountless);
}

TEST_P(Id3Bomb, IsRefusedWhenFramesStandInFramesWithoutEnd)
{
    QByteArray nested;
    for (int depth = 0; depth < 2'000; ++depth)
        nested = chapter(3, nested);
    EXPECT_EQ(outcomeOf(longId3Tag(3, nested)), u"its ID3 tag is not to be trusted: it has frames inside of frames"_s);
}

TEST_P(Id3Bomb, IsRefusedWhenAFrameClaimsTheBytesOfOthers)
{
    // A size of the data that goes beyond the frame, many times.
    const QByteArray frame = longId3Frame(4, "TXXX", QByteArray::fromHex("07000000") + "\3", 0x01);
    EXPECT_EQ(outcomeOf(longId3Tag(4, frame.repeated(5'000) + QByteArray(20 << 20, 'x'))),
              u"its ID3 tag is not to be trusted: a frame claims more bytes than it has"_s);
}

TEST_P(Id3Bomb, IsRefusedWhenItIsLargerThanTagsAre)
{
    EXPECT_EQ(outcomeOf(longId3Tag(3, longId3Frame(3, "TIT2", '\3' + QByteArray(100 << 20, 'x')))),
              u"its tags are not to be trusted: they have more than 64 MiB"_s);
}

TEST_P(Id3Bomb, IsNoneWithOrdinaryFrames)
{
    const QByteArray title = compressedId3Frame(4, "TIT2", compressed("\3Squeezed"), 9);
    const QByteArray many = longId3Frame(4, "TXXX", QByteArray("\3a\0b", 4)).repeated(9'000);
    const QByteArray tag = longId3Tag(
        4, chapterTable(4, longId3Frame(4, "TIT2", "\3Inside")) + chapter(4, longId3Frame(4, "TIT2", "\3Inside")) + many
               + title);
    // A FLAC file's own comment comes before an ID3 tag's.
    const bool isFlac = qstrcmp(GetParam().name, "Flac") == 0;
    EXPECT_EQ(outcomeOf(tag), isFlac ? u"title: "_s : u"title: Squeezed"_s);
}

TEST_P(Id3Bomb, IsLeftAsItIsByTheWriters)
{
    const QByteArray tag = longId3Tag(4, compressedId3Frame(4, "TIT2", bomb(), 10));
    const QByteArray before = GetParam().around(folder, tag);
    const QString path = folder.write(u"bomb"_s, before);
    const QByteArray name = GetParam().name;
    if (name == "Tta")
        GTEST_SKIP() << "TTA files are not written";
    const QString result = runLimited(kMemoryMiB, kSeconds, [&] {
        return failureOf([&] {
                   if (name == "Aiff")
                       TagLibTagsHelper::writeTagsForAIFFFile(path, fullRecord());
                   else if (name == "Flac")
                       TagLibTagsHelper::writeTagsForFLACFile(path, fullRecord(), true);
                   else
                       TagLibTagsHelper::writeTagsForMP3File(path, fullRecord(), true);
               })
            .value_or(u"written"_s);
    });
    EXPECT_EQ(result, u"Unable to save the tags: %1."_s.arg(kInflates));
    EXPECT_EQ(folder.read(u"bomb"_s), before);
}

INSTANTIATE_TEST_SUITE_P(Containers, Id3Bomb, ::testing::ValuesIn(kContainers),
                         [](const auto &container) { return std::string(container.param.name); });

TEST(TagBomb, IsRefusedWhenAFlacFileHasHugeBlocks)
{
    const TestFolder folder;
    EXPECT_EQ(outcome(writeSparseFlac(folder, u"a.flac"_s, 100), TagLibTagsHelper::tagsForFlacFile),
              u"its tags are not to be trusted: they have more than 64 MiB"_s);
}

TEST(TagBomb, IsRefusedWhenAVorbisCommentHasCountlessFields)
{
    const TestFolder folder;
    writeTaggableFlac(folder, u"plain.flac"_s);
    constexpr int kFields = 1'500'000;
    QByteArray comment(8, '\0');
    qToLittleEndian<quint32>(kFields, comment.data() + 4);
    for (int i = 0; i < kFields; ++i)
        comment += QByteArray("\3\0\0\0", 4) + static_cast<char>('A' + i % 26) + "=x";
    QByteArray head(4, '\0');
    qToBigEndian<quint32>(static_cast<quint32>(comment.size()) | 0x04000000U, head.data());
    QByteArray file = folder.read(u"plain.flac"_s);
    file.insert(4 + 4 + 34, head + comment);
    EXPECT_EQ(outcome(folder.write(u"a.flac"_s, file), TagLibTagsHelper::tagsForFlacFile),
              u"its tags are not to be trusted: they have more than 10000 fields"_s);
}

TEST(TagBomb, IsRefusedWhenAnApeTagHasCountlessFields)
{
    const TestFolder folder;
    writeApe(folder, u"plain.ape"_s);
    QByteArray items;
    constexpr quint32 kItems = 1'000'000;
    for (quint32 i = 0; i < kItems; ++i)
        items += QByteArray("\1\0\0\0\0\0\0\0", 8) + QByteArray::number(i).rightJustified(8, 'k') + QByteArray("\0x", 2);
    QByteArray footer("APETAGEX\xd0\7\0\0", 12);
    QByteArray numbers(20, '\0');
    qToLittleEndian<quint32>(static_cast<quint32>(items.size()) + 32, numbers.data());
    qToLittleEndian<quint32>(kItems, numbers.data() + 4);
    const QString path = folder.write(u"a.ape"_s, folder.read(u"plain.ape"_s) + items + footer + numbers);
    EXPECT_EQ(outcome(path, TagLibTagsHelper::tagsForAPEFile),
              u"its tags are not to be trusted: they have more than 10000 fields"_s);
}

TEST(TagBomb, IsRefusedWhenAnAiffFileHasCountlessChunks)
{
    const TestFolder folder;
    const QByteArray chunks = QByteArray("abcd\0\0\0\0", 8).repeated(4'000'000);
    const QString path = folder.write(u"a.aiff"_s, withAiffChunks(aiffBytes({.seconds = 0.1}), chunks));
    EXPECT_EQ(outcome(path, TagLibTagsHelper::tagsForAIFFFile),
              u"its tags are not to be trusted: they have more than 200000 parts"_s);
}
