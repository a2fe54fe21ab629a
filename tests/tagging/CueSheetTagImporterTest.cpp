// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/CueSheetTagImporter.h"

#include "app/ScriptedPrompts.h"
#include "base/NotificationCenter.h"
#include "support/TestFolder.h"
#include "TagFixtures.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

const QString kSheet = u"REM GENRE Fado\r\nTITLE \"Ao vivo em São João\"\r\nPERFORMER \"Amália – Coração\"\r\n"
                       "FILE \"disco.wav\" WAVE\r\n"
                       "  TRACK 01 AUDIO\r\n    TITLE \"Canção do \"mar\" só\"\r\n    PERFORMER \"Outra\"\r\n"
                       "    INDEX 01 00:00:00\r\n"
                       "  TRACK 02 AUDIO\r\n    TITLE Não sei\r\n    TITLES \"no\"\r\n"_s;

class CueSheetTagImporterTest : public ::testing::Test {
protected:
    CueSheetTagImporterTest()
    {
        NotificationCenter::instance().subscribe(QString::fromUtf16(NURVTrackNamesEnteredNotification), &context,
                                                 [this](const QVariant &names, const QVariantMap &information) {
                                                     posted.append(names.toStringList());
                                                     source = information.value(u"source"_s).toString();
                                                 });
    }
    std::optional<TagsObject> load(const QByteArray &bytes)
    {
        const QString path = folder.write(u"a.cue"_s, bytes);
        prompts.expectFile({.title = u"Choose CUE file"_s, .extensions = {u"cue"_s}, .option = u"cue"_s}, path);
        return importer.loadTagsFromCueSheet();
    }

    TestFolder folder;
    ScriptedPrompts prompts;
    CueSheetTagImporter importer{prompts};
    QObject context;
    QList<QStringList> posted;
    QString source;
};

TEST_F(CueSheetTagImporterTest, ReadsASheetInEveryEncoding)
{
    QByteArray windows;
    for (const QChar letter : kSheet)
        windows.append(letter == u'–' ? '\x96' : static_cast<char>(letter.unicode()));
    QStringEncoder utf16(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QList<QByteArray> forms{kSheet.toUtf8(), "\xef\xbb\xbf" + kSheet.toUtf8(), utf16.encode(kSheet), windows};
    for (const QByteArray &bytes : forms) {
        const std::optional<TagsObject> album = load(bytes);
        ASSERT_TRUE(album);
        EXPECT_EQ(album->albumText(), u"Ao vivo em São João"_s);
        EXPECT_EQ(album->artistText(), u"Amália – Coração"_s);
        EXPECT_EQ(posted.last(), (QStringList{u"Canção do \"mar\" só"_s, u"Não sei"_s}));
        EXPECT_EQ(source, u"CueSheetTagImporter");
    }
}

TEST_F(CueSheetTagImporterTest, EntersTheTracksByTrack01AudioAlone)
{
    for (const char *first : {"TRACK 1 AUDIO", "TRACK 01 MODE1/2352", "track 01 audio"}) {
        const std::optional<TagsObject> album =
            load(QByteArray("TITLE \"Album\"\n") + first + "\nTITLE \"Song\"\nPERFORMER \"P\"\n");
        ASSERT_TRUE(album);
        // The song's title stands before the first track, as far as that goes.
        EXPECT_EQ(album->albumText(), u"Song"_s) << first;
        EXPECT_EQ(album->artistText(), u"P"_s);
        EXPECT_TRUE(posted.last().isEmpty());
    }
}

TEST_F(CueSheetTagImporterTest, LeavesAbsentWhatIsNotThere)
{
    const std::optional<TagsObject> album = load("TRACK 01 AUDIO\nTITLE \"\"\n");
    ASSERT_TRUE(album);
    EXPECT_EQ(album->albumText(), std::nullopt);
    EXPECT_EQ(album->artistText(), std::nullopt);
    EXPECT_EQ(posted.last(), QStringList{QString()});
}

TEST_F(CueSheetTagImporterTest, TellsOfASheetThatCannotBeRead)
{
    const LogCapture log;
    const QString path = folder.makeFolder(u"x.cue"_s);
    prompts.expectFile({.title = u"Choose CUE file"_s, .extensions = {u"cue"_s}, .option = u"cue"_s}, path);
    QString reason;
    EXPECT_FALSE(CueSheetTagImporter::read(path, &reason));
    EXPECT_FALSE(reason.isEmpty());
    prompts.expectAsk({.title = u"The cue sheet “x.cue” could not be read."_s, .message = reason, .buttons = {u"OK"_s}},
                      u"OK"_s);
    EXPECT_FALSE(importer.loadTagsFromCueSheet());
    const QStringList told{u"error "_s + reason, u"Trying to open as unicode..."_s,
                           u"error "_s + reason, u"Last hope: opening using NSASCIIStringEncoding..."_s,
                           u"error "_s + reason, u"Could not open file...%1 %2"_s.arg(path, reason)};
    EXPECT_EQ(log.texts(u"nurv.files.unread"_s), told + told);
    EXPECT_TRUE(posted.isEmpty());
}

TEST_F(CueSheetTagImporterTest, GivesNothingWhenTheUserCancels)
{
    prompts.expectFile({.title = u"Choose CUE file"_s, .extensions = {u"cue"_s}, .option = u"cue"_s}, std::nullopt);
    EXPECT_FALSE(importer.loadTagsFromCueSheet());
    EXPECT_TRUE(posted.isEmpty());
}

} // namespace
} // namespace nurv::test
