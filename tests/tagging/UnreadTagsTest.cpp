// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NurvFailure.h"
#include "tagging/TagPreview.h"
#include "tagging/TagsTabFixture.h"
#include "tags/StoredTags.h"

#include <QFileInfo>
#include <QtEndian>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace nurv::test {

namespace {

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray syncSafe(qsizetype number)
{
    const auto part = [number](int shift) { return static_cast<char>(number >> shift & 0x7f); };
    return {QByteArray(1, part(21)) + part(14) + part(7) + part(0)};
}

/// A frame of version 2.3; its name may be anything.
QByteArray frame(const QByteArray &name, const QByteArray &contents)
{
    return name + bigEndian(static_cast<quint32>(contents.size())) + QByteArray(2, '\0') + contents;
}

QByteArray id3v23(const QByteArray &frames, qsizetype padding = 64)
{
    return QByteArray("ID3\3\0\0", 6) + syncSafe(frames.size() + padding) + frames + QByteArray(padding, '\0');
}

QByteArray littleEndian(qsizetype value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(static_cast<quint32>(value), bytes.data());
    return bytes;
}

QByteArray apeTag(const QList<std::pair<QByteArray, QByteArray>> &items)
{
    QByteArray tag;
    for (const auto &[key, value] : items)
        tag += littleEndian(value.size()) + littleEndian(0) + key + '\0' + value;
    return tag + "APETAGEX" + littleEndian(2000) + littleEndian(tag.size() + 32) + littleEndian(items.size())
           + QByteArray(12, '\0');
}

/// TagLib leaves some of what stands in tags out, and a file that it saves has lost that: such a file stays as it is.
class UnreadTagsTest : public TagsTabFixture {
protected:
    void expectRefused(TagFormat format, const QString &path, const QString &reason) const
    {
        const QString name = QFileInfo(path).fileName();
        const QByteArray bytes = folder.read(name);
        TagsObject record;
        record.setGenreText(u"Rock"_s);
        for (const auto &work : std::vector<std::function<void()>>{
                 [&] { tagFiles::write(path, record, false); }, [&] { tagFiles::write(path, record, true); },
                 [&] { static_cast<void>(tagPreview::changesOf({.path = path, .record = record}, false)); },
                 [&] { static_cast<void>(storedTags::read(format, path)); },
                 [&] { storedTags::replace(format, path, {}); }}) {
            try {
                work();
                ADD_FAILURE() << qPrintable(reason);
            } catch (const NurvFailure &failure) {
                EXPECT_EQ(failure.reason(), reason);
            }
            EXPECT_TRUE(folder.read(name) == bytes);
        }
    }
};

} // namespace

TEST_F(UnreadTagsTest, FramesBehindOneThatIsNone)
{
    const QByteArray sound = folder.read(QFileInfo(writeMp3(folder, u"plain.mp3"_s)).fileName());
    const auto write = [&](const QByteArray &odd) {
        return folder.write(u"a.mp3"_s, id3v23(frame("TIT2", QByteArray("\0T", 2)) + odd
                                               + frame("TALB", QByteArray("\0Keep", 5)))
                                            + sound);
    };
    const std::vector<std::pair<QByteArray, QString>> odd{{frame("TS2 ", QByteArray("\0x", 2)), u"TS2 "_s},
                                                          {frame("abcd", QByteArray("\0x", 2)), u"abcd"_s},
                                                          {frame("TPUB", {}), u"TPUB"_s},
                                                          {"TPUB" + bigEndian(100'000) + QByteArray(2, '\0'), u"TPUB"_s}};
    for (const auto &[bytes, name] : odd)
        expectRefused(TagFormat::Mp3, write(bytes),
                      u"Its ID3 frame \"%1\" cannot be read, and would be lost with all behind it."_s.arg(name));
    // A name of three letters and a zero is one that old programs write.
    const QString fine = write(frame(QByteArray("TS2\0", 4), QByteArray("\0x", 2)));
    TagsObject record;
    record.setGenreText(u"Rock"_s);
    tagFiles::write(fine, record, false);
    EXPECT_EQ(ffprobeTags(fine).value(u"album"_s), u"Keep");
    EXPECT_EQ(ffprobeTags(fine).value(u"genre"_s), u"Rock");
}

TEST_F(UnreadTagsTest, ApeItemsWithNamesThatAreNone)
{
    const QByteArray sound = folder.read(QFileInfo(writeWavpack(folder, u"plain.wv"_s)).fileName());
    const QString none = u"Its item \"%1\" has a name that APE tags do not take, and would be lost."_s;
    const std::vector<std::pair<QByteArray, QString>> odd{
        {"X", u"X"_s}, {"TAG", u"TAG"_s}, {"oggs", u"oggs"_s}, {"G\xcanero", u"GÊnero"_s}, {QByteArray(256, 'k'), QString(256, u'k')}};
    for (const auto &[key, name] : odd)
        expectRefused(TagFormat::Wavpack, folder.write(u"a.wv"_s, sound + apeTag({{"Title", "T"}, {key, "v"}})),
                      none.arg(name));
    expectRefused(TagFormat::Wavpack, folder.write(u"a.wv"_s, sound + apeTag({{"Mood", "one"}, {"MOOD", "two"}})),
                  u"Its item MOOD is there twice, and one of them would be lost."_s);
}

TEST_F(UnreadTagsTest, FlacFieldsWithNamesThatAreNone)
{
    const QString path = flac(u"a.flac"_s, {u"ARTISTE=kept"_s});
    const QByteArray made = folder.read(u"a.flac"_s);
    for (const QByteArray &name : {QByteArray("ART~STE"), QByteArray("ART\x7fSTE"), QByteArray("AR\xc3\x8aSTE")}) {
        folder.write(u"a.flac"_s, QByteArray(made).replace("ARTISTE=", name + '='));
        try {
            TagsObject record;
            record.setAlbumText(u"Album"_s);
            tagFiles::write(path, record, false);
            ADD_FAILURE() << name.constData();
        } catch (const NurvFailure &failure) {
            EXPECT_TRUE(failure.reason().endsWith(u"has a name of other characters than those of ASCII, or a \"~\" in it, and would be lost."_s))
                << qPrintable(failure.reason());
        }
        EXPECT_TRUE(folder.read(u"a.flac"_s).contains(name + "=kept"));
    }
}

TEST_F(UnreadTagsTest, EmptyFieldsAreNotWrittenOverPicturesThatNobodyCouldSee)
{
    QStringList paths;
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s}) {
        paths.append(flac(name));
        const QString cover = folder.write(u"cover.png"_s, encodedPicture(picture(9, 9, Qt::blue), "png"));
        ASSERT_EQ(runProgram(u"metaflac"_s, {u"--import-picture-from="_s + cover, paths.last()}).exitStatus, 0);
        // The pixels of the picture are damaged, its size is not.
        QByteArray bytes = folder.read(name);
        const qsizetype pixels = bytes.indexOf("IDAT");
        ASSERT_GT(pixels, 0);
        bytes.replace(pixels + 4, 8, QByteArray(8, '\xff'));
        folder.write(name, bytes);
    }
    tab.setWriteEmptyTags(true);
    for (const QStringList &selected : {QStringList(paths.first()), paths}) {
        tab.clearFiles();
        add(selected);
        EXPECT_TRUE(tab.albumArtImageView.placeholder().contains(u"picture cannot be shown: "_s))
            << qPrintable(tab.albumArtImageView.placeholder());
        tab.titleText.setText(u"T"_s);
        const QByteArray before = folder.read(u"a.flac"_s);
        prompts.expectAsk(
            {.title = u"Empty fields cannot be written."_s,
             .message =
                 u"The tags or the picture of at least one of the files could not be read: nobody knows what would be lost."_s,
             .buttons = {u"OK"_s}},
            u"OK"_s);
        tab.executeCommand();
        EXPECT_TRUE(folder.read(u"a.flac"_s) == before);
    }
}

TEST_F(UnreadTagsTest, APictureThatIsTooLargeIsSeenBeforeTheWriting)
{
    const QString path = flac(u"a.flac"_s);
    TagsObject record;
    record.setAlbumArt(noisePicture(2600, 2200));
    for (const auto &work : std::vector<std::function<void()>>{
             [&] { static_cast<void>(tagPreview::changesOf({.path = path, .record = record}, false)); },
             [&] { tagFiles::write(path, record, false); }}) {
        try {
            work();
            ADD_FAILURE() << "no FLAC file has room for it";
        } catch (const NurvFailure &failure) {
            EXPECT_EQ(failure.reason(), u"The picture is too large for this kind of file."_s);
        }
    }
}

TEST_F(UnreadTagsTest, SeveralFilesKeepTheirTitlesAndNumbers)
{
    const QStringList paths{flac(u"a.flac"_s, {u"TITLE=One"_s, u"TRACKNUMBER=1"_s}),
                            flac(u"b.flac"_s, {u"TITLE=Two"_s, u"TRACKNUMBER=2"_s})};
    add(paths);
    tab.albumText.setText(u"Both"_s);
    tab.executeCommand();
    for (const auto &[path, title, track] : {std::tuple(paths.first(), u"TITLE=One"_s, u"TRACKNUMBER=1"_s),
                                             std::tuple(paths.last(), u"TITLE=Two"_s, u"TRACKNUMBER=2"_s)}) {
        EXPECT_TRUE(metaflacTags(path).contains(u"ALBUM=Both"_s));
        EXPECT_TRUE(metaflacTags(path).contains(title));
        EXPECT_TRUE(metaflacTags(path).contains(track));
    }
}

TEST_F(UnreadTagsTest, ADiscTotalThatWasEditedInThePanelCounts)
{
    const QString path = flac(u"a.flac"_s, {u"DISCTOTAL=2"_s});
    add({path});
    tab.customTagsPanel().fillTags({{u"DISCTOTAL"_s, u"5"_s}});
    tab.executeCommand();
    EXPECT_TRUE(metaflacTags(path).contains(u"DISCTOTAL=5"_s)) << qPrintable(metaflacTags(path).join(u' '));
}

} // namespace nurv::test
