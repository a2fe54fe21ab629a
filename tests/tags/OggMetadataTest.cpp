// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/OggMetadata.h"

#include "base/NurvFailure.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "tags/MetadataInventory.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

class OggMetadataTest : public ::testing::Test {
protected:
    TestFolder folder;
    QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});

    QString opus(const QStringList &options)
    {
        const QString path = folder.path(u"a.opus"_s);
        EXPECT_EQ(runProgram(u"opusenc"_s, QStringList{u"--quiet"_s} + options + QStringList{wav, path}).exitStatus, 0);
        return path;
    }
};

TEST_F(OggMetadataTest, ReadsTheCommentOfOpusAndOfVorbis)
{
    const QString path = opus({u"--title"_s, u"Änderung"_s, u"--artist"_s, u"One"_s, u"--comment"_s, u"MOOD=calm = quiet"_s});
    const MetadataInventory inventory = MetadataInventory::of(path);
    EXPECT_EQ(inventory.tags.value(u"TITLE"_s), QStringList{u"Änderung"_s});
    EXPECT_EQ(inventory.tags.value(u"ARTIST"_s), QStringList{u"One"_s});
    EXPECT_EQ(inventory.tags.value(u"MOOD"_s), QStringList{u"calm = quiet"_s});
    const QString vorbis = writeByFfmpeg(folder.path(u"a.ogg"_s), {.seconds = 0.2},
                                         {u"-c:a"_s, u"libvorbis"_s, u"-metadata"_s, u"title=Song"_s});
    EXPECT_EQ(MetadataInventory::of(vorbis).tags.value(u"TITLE"_s), QStringList{u"Song"_s});
}

TEST_F(OggMetadataTest, ReadsACommentThatGoesOverManyPages)
{
    // An argument of a program holds 128 KiB, and a page 64.
    QStringList options;
    for (int i = 0; i < 5; ++i)
        options << u"--comment"_s << u"TEXT%1="_s.arg(i) + QString(100'000 + i, QChar(u'a' + i));
    const MetadataInventory inventory = MetadataInventory::of(opus(options));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(inventory.tags.value(u"TEXT%1"_s.arg(i)), QStringList{QString(100'000 + i, QChar(u'a' + i))}) << i;
}

TEST_F(OggMetadataTest, ReadsAPastStreamsBetweenItsPages)
{
    opus({u"--title"_s, u"Song"_s});
    QByteArray bytes = folder.read(u"a.opus"_s);
    // A page of another stream behind the first one.
    const qsizetype second = bytes.indexOf("OggS", 4);
    QByteArray foreign = bytes.first(second);
    foreign[14] = static_cast<char>(foreign[14] ^ 0x55);
    bytes.insert(second, foreign);
    EXPECT_EQ(MetadataInventory::of(folder.write(u"b.opus"_s, bytes)).tags.value(u"TITLE"_s), QStringList{u"Song"_s});
}

TEST_F(OggMetadataTest, TellsEveryCutOfTheComment)
{
    opus({u"--title"_s, u"Song"_s});
    const QByteArray bytes = folder.read(u"a.opus"_s);
    const qsizetype end = bytes.indexOf("OggS", bytes.indexOf("OpusTags"));
    ASSERT_GT(end, 100);
    for (qsizetype cut = 4; cut < bytes.indexOf("Song"); ++cut) {
        const QString path = folder.write(u"cut.opus"_s, bytes.first(cut));
        EXPECT_THROW(static_cast<void>(MetadataInventory::of(path)), NurvFailure) << cut;
    }
}

} // namespace
} // namespace nurv
