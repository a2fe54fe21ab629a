// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AACTagsHelper.h"

#include "Mp4Fixtures.h"
#include "support/AudioFixtures.h"
#include "TagFixtures.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;
using namespace nurv;
using namespace nurv::test;

namespace {

const QString kCannotRead = u"Unable to open the file for reading."_s;
const QString kCannotOpen = u"Unable to open the output file for tagging."_s;
const QString kNotOptimized = u"unable to optimize @% file"_s;

void write(const QString &path, const TagsObject &tags)
{
    AACTagsHelper::writeTagsForFile(path, tags, false, false);
}

class AACTagsHelperFailures : public ::testing::Test {
protected:
    TestFolder folder;

    QString makeFile(const QStringList &arguments = {}) { return writeM4a(folder, u"a.m4a"_s, u"alac"_s, arguments); }
    QByteArray bytes() { return folder.read(u"a.m4a"_s); }
};

} // namespace

TEST_F(AACTagsHelperFailures, FailsWithTheTextForWhatIsNoReadableMp4)
{
    makeFile();
    const QByteArray whole = bytes();
    const QString wav = folder.write(u"wav.m4a"_s, wavBytes({.seconds = 0.1}));
    const QString empty = folder.write(u"empty.m4a"_s, {});
    const QString cut = folder.write(u"cut.m4a"_s, whole.chopped(1));
    for (const QString &path : {folder.path(u"missing"_s), folder.path(), wav, empty, cut}) {
        EXPECT_EQ(failureOf([&] { static_cast<void>(AACTagsHelper::tagsForFile(path)); }), kCannotRead)
            << qPrintable(path);
        EXPECT_EQ(failureOf([&] { write(path, fullRecord()); }), kCannotOpen) << qPrintable(path);
    }
    EXPECT_EQ(folder.read(u"wav.m4a"_s), wavBytes({.seconds = 0.1}));
    EXPECT_EQ(folder.read(u"cut.m4a"_s), whole.chopped(1));
    EXPECT_EQ(folder.list().size(), 4);
}

TEST_F(AACTagsHelperFailures, FailsWithTheTextForAFileThatCannotBeWritten)
{
    // A running program's file cannot be written even by the superuser.
    const QString path = folder.path(u"a.m4a"_s);
    ASSERT_TRUE(QFile::copy(u"/usr/bin/sleep"_s, path));
    const QByteArray before = bytes();
    QProcess sleeper;
    sleeper.start(path, {u"60"_s});
    ASSERT_TRUE(sleeper.waitForStarted());
    EXPECT_EQ(failureOf([&] { write(path, fullRecord()); }), kCannotOpen);
    sleeper.kill();
    ASSERT_TRUE(sleeper.waitForFinished());
    EXPECT_EQ(bytes(), before);
}

TEST_F(AACTagsHelperFailures, TagsButDoesNotOptimizeAFileThatIsCutShort)
{
    const QString path = makeFile();
    folder.write(u"a.m4a"_s, bytes() + boxBytes("mdat", "more").chopped(1));
    const QByteArray sound = decodedMd5(path);
    EXPECT_EQ(failureOf([&] { write(path, fullRecord()); }), kNotOptimized);
    EXPECT_EQ(ffprobeTags(path).value(u"title"_s), fullRecord().titleText());
    EXPECT_EQ(decodedMd5(path), sound);
    EXPECT_TRUE(bytes().endsWith(boxBytes("mdat", "more").chopped(1)));
    EXPECT_LT(bytes().indexOf("mdat"), bytes().indexOf("moov")) << "in the old order";
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
}

TEST_F(AACTagsHelperFailures, LeavesFilesAloneWhoseBytesMustNotMove)
{
    const QString path = writeM4a(folder, u"a.m4a"_s, u"aac"_s, {u"-movflags"_s, u"+frag_keyframe+empty_moov"_s});
    const QByteArray fragmented = bytes();
    const std::optional<QString> failure = failureOf([&] { write(path, fullRecord()); });
    ASSERT_TRUE(failure.has_value());
    EXPECT_TRUE(failure->startsWith(u"Unable to save the tags"_s)) << qPrintable(*failure);
    EXPECT_EQ(bytes(), fragmented);
    EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
}

TEST_F(AACTagsHelperFailures, LeavesFilesAloneWhoseMetadataIsDamagedOrOfAnotherKind)
{
    const QString path = makeFile({u"-metadata"_s, u"title=old"_s});
    const QByteArray plain = bytes();
    const auto refuses = [&](const QByteArray &file) {
        folder.write(u"a.m4a"_s, file);
        const std::optional<QString> failure = failureOf([&] { write(path, fullRecord()); });
        EXPECT_EQ(failure, u"Unable to save the tags: the metadata is damaged or of another kind."_s);
        EXPECT_EQ(bytes(), file);
        EXPECT_EQ(AACTagsHelper::tagsForFile(path).titleText(), u""_s);
    };
    refuses(withItems(plain, "xxxxxxxxx"));
    refuses(edited(plain, {"moov", "udta", "meta"}, [](const QByteArray &contents) { return contents + "x"; }));
    refuses(edited(plain, {"moov", "udta"}, [](const QByteArray &contents) { return contents + "xxxxx"; }));
    refuses(edited(plain, {"moov", "udta", "meta", "hdlr"},
                   [](const QByteArray &contents) { return contents.left(8) + "mdta" + contents.mid(12); }));
}

TEST_F(AACTagsHelperFailures, LeavesTheFileAsItWasWhenTheDiskIsFull)
{
    const QString path = makeFile();
    const QByteArray before = bytes();
    TagsObject tags = fullRecord();
    tags.setAlbumArt(noisePicture(100, 100));
    for (const rlim_t room :
         {rlim_t{1000}, static_cast<rlim_t>(before.size()), static_cast<rlim_t>(before.size()) + 9}) {
        const FileSizeLimit limit(room);
        const std::optional<QString> failure = failureOf([&] { write(path, tags); });
        ASSERT_TRUE(failure.has_value());
        EXPECT_TRUE(failure->startsWith(u"Unable to save the tags: "_s)) << qPrintable(*failure);
        EXPECT_EQ(bytes(), before);
        EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    }
}

TEST_F(AACTagsHelperFailures, SurvivesBoxesWithinBoxes)
{
    QByteArray deep;
    constexpr quint32 kLevels = 300'000;
    for (quint32 level = 0; level < kLevels; ++level)
        deep += bigEndian32(8 * (kLevels - level)) + "moov";
    const QString path = folder.write(u"deep.m4a"_s, boxBytes("ftyp", "M4A ") + deep);
    EXPECT_EQ(failureOf([&] { static_cast<void>(AACTagsHelper::tagsForFile(path)); }), kCannotRead);
    EXPECT_EQ(failureOf([&] { write(path, fullRecord()); }), kCannotOpen);

    QByteArray flat = boxBytes("ftyp", "M4A ");
    for (int i = 0; i < 400'000; ++i)
        flat += boxBytes("free", {});
    makeFile();
    folder.write(u"flat.m4a"_s, flat + bytes());
    EXPECT_EQ(failureOf([&] { write(folder.path(u"flat.m4a"_s), fullRecord()); }), kCannotOpen);
}

TEST_F(AACTagsHelperFailures, SurvivesFilesCutAtManyPlacesAndFilesWithWrongBytes)
{
    const QString path = makeFile({u"-movflags"_s, u"+faststart"_s});
    TagsObject record = fullRecord();
    record.setAlbumArt(noisePicture(20, 20));
    write(path, record);
    const QByteArray whole = bytes();
    const auto readAndWrite = [&](const QByteArray &file) {
        folder.write(u"a.m4a"_s, file);
        static_cast<void>(failureOf([&] { static_cast<void>(AACTagsHelper::tagsForFile(path)); }));
        const std::optional<QString> failure = failureOf([&] { write(path, fullRecord()); });
        if (failure && failure != kNotOptimized) {
            EXPECT_EQ(bytes(), file);
        }
        EXPECT_EQ(folder.list(), QStringList{u"a.m4a"_s});
    };
    for (qsizetype length = 0; length < whole.size(); length += 1 + length / 12)
        readAndWrite(whole.left(length));
    std::minstd_rand random(11);
    for (int round = 0; round < 150; ++round) {
        QByteArray ruined = whole;
        for (int i = 0; i < 4; ++i)
            ruined[static_cast<qsizetype>(random() % 3000)] = static_cast<char>(random() & 0xffU);
        readAndWrite(ruined);
    }
}
