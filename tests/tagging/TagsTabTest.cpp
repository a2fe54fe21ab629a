// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsTabFixture.h"

#include "base/NotificationCenter.h"

namespace nurv::test {
namespace {

class TagsTabTest : public TagsTabFixture {};

TEST_F(TagsTabTest, SelectsTheFilesThatAreNew)
{
    const QString b = flac(u"b.flac"_s);
    add({b});
    EXPECT_EQ(tab.selectedRows(), QList<int>{0});
    add({flac(u"a.flac"_s), b, flac(u"c.flac"_s)});
    EXPECT_EQ(tab.selectedRows(), (QList<int>{0, 2}));
    add({b});
    tab.deleteSelectedRows({1});
    add({b});
    EXPECT_EQ(tab.selectedRows(), QList<int>{1});
}

TEST_F(TagsTabTest, ShowsWhatOneFileHolds)
{
    const QString path = folder.path(u"a.flac"_s);
    const QString made = flac(u"a.flac"_s);
    TagsObject record = fullRecord();
    record.setAlbumArt(picture(8, 4, Qt::green));
    record.customTagsDictionary().insert(u"MOOD"_s, u"blue"_s);
    tagFiles::write(made, record, false);
    add({path});
    EXPECT_EQ(tab.titleText.text(), *record.titleText());
    EXPECT_EQ(tab.artistText.text(), *record.artistText());
    EXPECT_EQ(tab.albumText.text(), *record.albumText());
    EXPECT_EQ(tab.dateText.text(), *record.dateText());
    EXPECT_EQ(tab.genreText.text(), *record.genreText());
    EXPECT_EQ(tab.composerText.text(), *record.composerText());
    EXPECT_EQ(tab.commentText.text(), *record.commentText());
    EXPECT_EQ(tab.trackText.text(), *record.trackText());
    EXPECT_EQ(tab.trackTotalText.text(), *record.trackTotalText());
    EXPECT_EQ(tab.discText.text(), *record.discText());
    EXPECT_EQ(tab.discTotalText.text(), *record.discTotalText());
    ASSERT_TRUE(tab.albumArtImageView.picture());
    EXPECT_EQ(tab.albumArtImageView.picture()->size(), QSize(8, 4));
    EXPECT_EQ(tab.customTagsPanel().customTagDictionary()->value(u"MOOD"_s), u"blue");
    EXPECT_EQ(tab.multipleSelectionsLabel.text(), QString());
    EXPECT_TRUE(tab.titleText.isEnabled());
}

TEST_F(TagsTabTest, ShowsTheFirstAgainstTheLastAndSaysVarious)
{
    add({flac(u"1.flac"_s, {u"ALBUM=A"_s, u"ARTIST=X"_s, u"TITLE=T"_s}),
         flac(u"2.flac"_s, {u"ALBUM=B"_s, u"ARTIST=X"_s}), flac(u"3.flac"_s, {u"ALBUM=A"_s, u"ARTIST=Y"_s})});
    EXPECT_EQ(tab.multipleSelectionsLabel.text(), u"multiple selections");
    EXPECT_EQ(tab.albumText.text(), u"A");
    EXPECT_EQ(tab.artistText.text(), QString());
    EXPECT_EQ(tab.artistText.placeholder(), u"various");
    EXPECT_EQ(tab.genreText.placeholder(), QString());
    EXPECT_EQ(tab.titleText.text(), QString());
    EXPECT_EQ(tab.titleText.placeholder(), u"various");
    EXPECT_FALSE(tab.titleText.isEnabled());
    EXPECT_FALSE(tab.trackText.isEnabled());
    select({});
    EXPECT_EQ(tab.multipleSelectionsLabel.text(), QString());
    EXPECT_EQ(tab.artistText.placeholder(), QString());
    EXPECT_FALSE(tab.titleText.isEnabled());
}

TEST_F(TagsTabTest, TellsOfAFileThatCannotBeRead)
{
    add({folder.write(u"a.m4a"_s, "no sound")});
    EXPECT_EQ(tab.note.text(), u"Tags that cannot be read: a.m4a: Unable to open the file for reading.");
    EXPECT_EQ(tab.titleText.text(), QString());
}

TEST_F(TagsTabTest, KeepsNamesUntilTheNextOnes)
{
    const QString name = QString::fromUtf16(NURVTrackNamesEnteredNotification);
    NotificationCenter::instance().post(name, QStringList{u"One"_s, u"Two"_s});
    EXPECT_EQ(tab.names(), (QStringList{u"One"_s, u"Two"_s}));
    EXPECT_FALSE(tab.autoName());
    EXPECT_FALSE(controller.trackNameInputController().isVisible());
    NotificationCenter::instance().post(name, QStringList(), {{u"source"_s, u"CueSheetTagImporter"_s}});
    EXPECT_EQ(tab.names(), std::nullopt);
    EXPECT_FALSE(tab.autoName());
}

TEST_F(TagsTabTest, TakesACueSheet)
{
    const QString cue = folder.write(u"a.cue"_s, "TITLE \"Al\"\nPERFORMER \"Per\"\nTRACK 01 AUDIO\nTITLE \"One\"\n"
                                                 "TRACK 02 AUDIO\nTITLE \"Two\"\n");
    add({flac(u"1.flac"_s), flac(u"2.flac"_s)});
    prompts.expectFile({.title = u"Choose CUE file"_s, .extensions = {u"cue"_s}, .option = u"cue"_s}, cue);
    tab.loadTagsFromCueSheet();
    EXPECT_EQ(tab.albumText.text(), u"Al");
    EXPECT_EQ(tab.artistText.text(), u"Per");
    EXPECT_TRUE(tab.autoName());
    EXPECT_TRUE(controller.trackNameInputController().isVisible());
    EXPECT_EQ(controller.trackNameInputController().namesText(), u"One\nTwo\n");
    tab.clearFiles();
    EXPECT_FALSE(tab.autoName());
}

TEST_F(TagsTabTest, ShowsTheTrackNamesWhenAutomaticNamingIsSwitchedOn)
{
    tab.autoNameClick();
    EXPECT_FALSE(controller.trackNameInputController().isVisible());
    tab.setAutoName(true);
    tab.autoNameClick();
    EXPECT_TRUE(controller.trackNameInputController().isVisible());
}

TEST_F(TagsTabTest, ComparesAllFilesOfTheList)
{
    add({flac(u"1.flac"_s, {u"ALBUM=A"_s}), flac(u"2.flac"_s, {u"ALBUM=A"_s, u"MOOD=x"_s}),
         folder.write(u"3.wav"_s, "x")});
    EXPECT_TRUE(tab.allTagsEqual());
    add({flac(u"4.flac"_s, {u"ALBUM=B"_s})});
    EXPECT_FALSE(tab.allTagsEqual());
}

TEST_F(TagsTabTest, TakesPicturesOfEveryKindAndRefusesOthers)
{
    add({flac(u"1.flac"_s)});
    for (const char *format : {"png", "jpeg", "bmp", "tiff", "webp"}) {
        tab.removePicture();
        tab.takePictureFile(imageFile(u"cover."_s + QString::fromLatin1(format), format));
        tab.finishReading();
        ASSERT_TRUE(tab.albumArtImageView.picture()) << format;
        EXPECT_EQ(tab.albumArtImageView.picture()->size(), QSize(32, 16));
    }
    const AlbumArt last = tab.albumArtImageView.picture();
    prompts.expectAsk({.title = u"The picture “x.png” cannot be used."_s,
                       .message = u"it is of no known kind"_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    tab.takePictureFile(folder.write(u"x.png"_s, "no picture"));
    tab.finishReading();
    EXPECT_EQ(tab.albumArtImageView.picture(), last);
}

TEST_F(TagsTabTest, SavesThePictureAsItIs)
{
    const QByteArray jpeg = encodedPicture(picture(32, 16, Qt::red), "jpeg");
    tab.takePicture(jpeg, u"x"_s);
    tab.finishReading();
    prompts.expectSavePath(u"cover.jpg"_s, u"Save picture as"_s, folder.path(u"saved.jpg"_s));
    tab.savePictureAs();
    EXPECT_EQ(folder.read(u"saved.jpg"_s), jpeg);
}

TEST_F(TagsTabTest, WantsNoContextMenu)
{
    EXPECT_FALSE(tab.usesTableViewContextMenu());
}

} // namespace
} // namespace nurv::test
