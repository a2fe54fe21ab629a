// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTab.h"

#include "convert/ConvertFixture.h"
#include "convert/DecodeFlacTask.h"
#include "convert/DecodeSHNTask.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DecodeTabTest : public test::HeldQueueFixture {
protected:
    DecodeTab tab{controller};

    void press(const QStringList &names)
    {
        QStringList paths;
        for (const QString &name : names)
            paths.append(folder.write(name, ""));
        tab.addMatchedFiles(paths);
        tab.executeCommand();
    }
    void pressIntoFolder(const QStringList &names)
    {
        prompts.expectOutputFolder(out.path());
        press(names);
    }
    void expectFlacOptions(bool shown) const
    {
        EXPECT_EQ(tab.decodeFlacThroughErrors.isHidden(), !shown);
        EXPECT_EQ(tab.flacKeepForeignMetadataButton.isHidden(), !shown);
        EXPECT_EQ(tab.flacOptionsLabel.isHidden(), !shown);
    }
};

TEST_F(DecodeTabTest, ShowsTheFlacOptionsWhileFlacFilesAreListed)
{
    expectFlacOptions(false);
    tab.addFile(folder.path(u"a.shn"_s));
    expectFlacOptions(false);
    tab.addFile(folder.path(u"b.FLAC"_s));
    expectFlacOptions(true);
    tab.clearFiles();
    expectFlacOptions(false);
}

TEST_F(DecodeTabTest, DoesNotHideTheFlacOptionsWhenOtherFilesAreAdded)
{
    tab.addFile(folder.path(u"a.flac"_s));
    tab.filterGivenExtension(u"flac"_s);
    tab.addFile(folder.path(u"b.shn"_s));
    expectFlacOptions(true);
}

TEST_F(DecodeTabTest, ShowsAndHidesTheFlacOptionsOnDemand)
{
    tab.showFLacOptions(true);
    expectFlacOptions(true);
    tab.showFLacOptions(false);
    expectFlacOptions(false);
}

TEST_F(DecodeTabTest, DoesNothingForAnEmptyList)
{
    tab.executeCommand();
    EXPECT_EQ(queue().taskCount(), 0);
}

TEST_F(DecodeTabTest, QueuesNothingForFilesThatAreNotDecodedAndClearsTheList)
{
    pressIntoFolder({u"a.wav"_s, u"b"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(DecodeTabTest, DecodesEveryFileInTheOrderOfTheListIntoASetOfItsOwn)
{
    pressIntoFolder({u"10.flac"_s, u"2.shn"_s, u"3.txt"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_NE(std::dynamic_pointer_cast<DecodeSHNTask>(tasks[0]), nullptr);
    EXPECT_EQ(tasks[0]->launchPath(), tab.pathToCommandLineTools() + u"/shntool"_s);
    EXPECT_EQ(tasks[0]->fileName(), folder.path(u"2.shn"_s));
    EXPECT_EQ(tasks[0]->outputFile(), out.path(u"2.wav"_s));
    EXPECT_EQ(tasks[0]->title(), u"2.shn");
    EXPECT_NE(std::dynamic_pointer_cast<DecodeFlacTask>(tasks[1]), nullptr);
    EXPECT_EQ(tasks[1]->launchPath(), tab.pathToCommandLineTools() + u"/flac"_s);
    EXPECT_EQ(tasks[1]->arguments(), (QStringList{u"-d"_s, folder.path(u"10.flac"_s), u"-o"_s, out.path(u"10.wav"_s)}));
    EXPECT_NE(tasks[0]->results(), tasks[1]->results());
    EXPECT_EQ(tasks[0]->results()->memberCount(), 1);
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(DecodeTabTest, DecodesToAiffWithBothFlacOptions)
{
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"AIFF"_s));
    tab.flacKeepForeignMetadataButton.setOn(true);
    tab.decodeFlacThroughErrors.setOn(true);
    pressIntoFolder({u"a.flac"_s, u"b.shn"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_EQ(tasks[0]->arguments(),
              (QStringList{u"-d"_s, u"--keep-foreign-metadata"_s, u"-F"_s, u"--force-aiff-format"_s,
                           folder.path(u"a.flac"_s), u"-o"_s, out.path(u"a.aiff"_s)}));
    EXPECT_EQ(tasks[1]->arguments().at(2), u"aiff");
    EXPECT_EQ(tasks[1]->outputFile(), out.path(u"b.aiff"_s));
}

TEST_F(DecodeTabTest, PutsOutputsBesideTheirSourcesAndRemembersThat)
{
    tab.sourceDecodeButton.setOn(true);
    EXPECT_EQ(SettingsStore::instance().integer(u"decodeToSourceDirectory"_s), 1);
    press({u"cd1/a.flac"_s, u"cd2/a.shn"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_EQ(tasks[0]->outputFile(), folder.path(u"cd1/a.wav"_s));
    EXPECT_EQ(tasks[1]->outputFile(), folder.path(u"cd2/a.wav"_s));
}

TEST_F(DecodeTabTest, KeepsTheListWhenTheFolderChooserIsCancelled)
{
    prompts.expectOutputFolder(std::nullopt);
    press({u"a.flac"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames().size(), 1);
}

TEST_F(DecodeTabTest, AsksBeforeOriginalsAreDeleted)
{
    tab.deleteOriginalsButton.setOn(true);
    prompts.expectDeletionQuestion(u"No"_s);
    press({u"a.flac"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames().size(), 1);

    prompts.expectDeletionQuestion(u"Yes"_s);
    pressIntoFolder({});
    EXPECT_TRUE(queuedConversions().at(0)->deleteOriginal());
}

TEST_F(DecodeTabTest, KeepsOriginalsThatShareAnOutput)
{
    set(u"warnOnDelete", false);
    tab.deleteOriginalsButton.setOn(true);
    // Some disks take names for the same that differ in their case only.
    pressIntoFolder({u"a.flac"_s, u"a.shn"_s, u"b.shn"_s, u"Song.flac"_s, u"song.shn"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 5U);
    for (const auto &task : tasks)
        EXPECT_EQ(task->reasonToKeepSource().has_value(), task->fileName() != folder.path(u"b.shn"_s))
            << qPrintable(task->fileName());
}

} // namespace
} // namespace nurv
