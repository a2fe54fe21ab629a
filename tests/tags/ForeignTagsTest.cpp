// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 files with tags of every version and encoding, as other programs leave them: read, written into, and read by
// ffprobe.
#include "MetadataFixtures.h"
#include "support/AudioFixtures.h"
#include "support/TestProgram.h"
#include "TagFixtures.h"
#include "tags/TagLibTagsHelper.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

#include <string>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

const QString kTitle = u"Größe"_s;
const QString kArtist = u"Anna"_s;
const QByteArray kSecret = "owner" + QByteArray(1, '\0') + "secret";

/// The contents of a text frame: the number of its encoding (ID3v2.4.0, section 4), and the text.
QByteArray encoded(int encoding, const QString &text)
{
    const QByteArray number(1, static_cast<char>(encoding));
    switch (encoding) {
    case 0: return number + text.toLatin1();
    case 1: return number + QByteArray("\xff\xfe") + QByteArray(QStringEncoder(QStringEncoder::Utf16LE).encode(text));
    case 2: return number + QByteArray(QStringEncoder(QStringEncoder::Utf16BE).encode(text));
    default: return number + text.toUtf8();
    }
}

/// UTF-16 whose first two bytes say that the high byte comes first.
QByteArray bigEndianWithMark(const QString &text)
{
    return "\1\xfe\xff" + QByteArray(QStringEncoder(QStringEncoder::Utf16BE).encode(text));
}

/// A frame of ID3v2.2: three letters, three bytes of size, no flags.
QByteArray oldFrame(const QByteArray &id, const QByteArray &contents)
{
    return id + QByteArray(2, '\0') + static_cast<char>(contents.size()) + contents;
}

QByteArray frames(const QByteArray &title, const QByteArray &artist)
{
    return id3Frame("TIT2", title) + id3Frame("TPE1", artist) + id3Frame("TBPM", encoded(0, u"120"_s))
           + id3Frame("PRIV", kSecret);
}

QByteArray unsynchronised(QByteArray bytes)
{
    return bytes.replace("\xff", QByteArray("\xff\0", 2));
}

struct ForeignTags {
    const char *name;
    QByteArray front;
    QByteArray back = {};
    bool hasSecret = true;
};

void PrintTo(const ForeignTags &tags, std::ostream *stream)
{
    *stream << tags.name;
}

class ForeignTagsOfMp3 : public ::testing::TestWithParam<ForeignTags> {
protected:
    TestFolder folder;
};

TEST_P(ForeignTagsOfMp3, AreReadAndStayBesideWhatIsWritten)
{
    const QString plain = writeMp3(folder, u"plain.mp3"_s);
    const QByteArray sound = decodedMd5(plain);
    const QString path = folder.write(u"a.mp3"_s, GetParam().front + folder.read(u"plain.mp3"_s) + GetParam().back);
    const TagsObject read = TagLibTagsHelper::tagsForMP3File(path);
    EXPECT_EQ(read.titleText(), kTitle);
    EXPECT_EQ(read.artistText(), kArtist);
    TagsObject record;
    record.setAlbumText(u"Album"_s);
    TagLibTagsHelper::writeTagsForMP3File(path, record, false);
    const QMap<QString, QString> tags = ffprobeTags(path);
    EXPECT_EQ(tags.value(u"title"_s), kTitle);
    EXPECT_EQ(tags.value(u"artist"_s), kArtist);
    EXPECT_EQ(tags.value(u"album"_s), u"Album");
    if (!GetParam().front.isEmpty()) {
        EXPECT_EQ(tags.value(u"tbpm"_s), u"120");
    }
    EXPECT_EQ(folder.read(u"a.mp3"_s).contains(kSecret), GetParam().hasSecret);
    EXPECT_EQ(decodedMd5(path), sound);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, ForeignTagsOfMp3,
    ::testing::Values(ForeignTags{"Id3v22",
                                  id3Tag(2, oldFrame("TT2", encoded(0, kTitle)) + oldFrame("TP1", encoded(1, kArtist))
                                                + oldFrame("TBP", encoded(0, u"120"_s))),
                                  {},
                                  false},
                      ForeignTags{"Id3v23Latin1", id3Tag(3, frames(encoded(0, kTitle), encoded(0, kArtist)))},
                      ForeignTags{"Id3v23Utf16", id3Tag(3, frames(encoded(1, kTitle), encoded(1, kArtist)))},
                      ForeignTags{"Id3v23Utf16BigEndian",
                                  id3Tag(3, frames(bigEndianWithMark(kTitle), bigEndianWithMark(kArtist)))},
                      ForeignTags{"Id3v23Unsynchronised",
                                  id3Tag(3, unsynchronised(frames(encoded(1, kTitle), encoded(1, kArtist))), 0x80)},
                      ForeignTags{"Id3v24Utf8", id3Tag(4, frames(encoded(3, kTitle), encoded(3, kArtist)))},
                      ForeignTags{"Id3v24Utf16WithoutMark", id3Tag(4, frames(encoded(2, kTitle), encoded(2, kArtist)))},
                      ForeignTags{"Id3v1",
                                  {},
                                  id3v1Tag("Gr\xf6\xdf"
                                           "e",
                                           "Anna", "", "1977", "note", 3, 17),
                                  false},
                      ForeignTags{"Id3v24AndId3v1", id3Tag(4, frames(encoded(3, kTitle), encoded(3, kArtist))),
                                  id3v1Tag("Other", "Else", "Old", "1977", "note", 3, 17)}),
    [](const auto &testInfo) { return std::string(testInfo.param.name); });

} // namespace
} // namespace nurv::test
