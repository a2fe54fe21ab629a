// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/TagPreview.h"

#include "tagging/TagsTabFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

class TagPreviewTest : public TagsTabFixture {
protected:
    TagPreviewTest()
    {
        record.setComposerText(u"Weir"_s);
        record.setTrackTotalText(u"12"_s);
        record.setDiscTotalText(u"2"_s);
        record.customTagsDictionary().insert(u"TAPER"_s, u"somebody"_s);
        record.customTagsDictionary().insert(u"EMPTY"_s, QString());
    }
    QStringList changes(const QString &path, bool writeEmptyTags = false) const
    {
        return tagPreview::changesOf({.path = path, .record = record}, writeEmptyTags);
    }

    TagsObject record;
};

} // namespace

TEST_F(TagPreviewTest, NamesWhatFilesOfAKindDoNotTake)
{
    EXPECT_THAT(changes(writeWavpack(folder, u"a.wv"_s)),
                ElementsAre(u"Composer: files of this kind take none from here"_s,
                            u"Track total: files of this kind take none from here"_s,
                            u"Disc total: files of this kind take none from here"_s,
                            u"TAPER: files of this kind take none from here"_s));
    EXPECT_THAT(changes(writeMp3(folder, u"b.mp3"_s)),
                ElementsAre(u"Composer: (none) → “Weir”"_s, u"Track total: not written without a number"_s,
                            u"Disc total: not written without a number"_s,
                            u"TAPER: files of this kind take none from here"_s));
}

TEST_F(TagPreviewTest, ATotalBesideANumberIsWritten)
{
    record.setTrackText(u"3"_s);
    record.setDiscText(u"1"_s);
    EXPECT_THAT(changes(writeMp3(folder, u"b.mp3"_s)),
                ElementsAre(u"Composer: (none) → “Weir”"_s, u"Disc: (none) → “1/2”"_s, u"Track: (none) → “3/12”"_s,
                            u"Old tag for old players (ID3v1): (none) → 128 bytes"_s,
                            u"TAPER: files of this kind take none from here"_s));
}

TEST_F(TagPreviewTest, AFlacFileTakesAll)
{
    const QStringList lines = changes(flac(u"a.flac"_s));
    EXPECT_THAT(lines.filter(u"take none"_s), IsEmpty());
    EXPECT_THAT(lines.filter(u"without a number"_s), IsEmpty());
    EXPECT_TRUE(lines.contains(u"TAPER: (none) → “somebody”"_s)) << qPrintable(lines.join(u'\n'));
}

} // namespace nurv::test
