// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeTab.h"

#include "checksum/CreateFFPTask.h"
#include "checksum/CreateMD5Task.h"
#include "convert/ConvertFixture.h"
#include "convert/EncodeFlacTask.h"
#include "convert/EncodeSHNTask.h"
#include "convert/EncodeSHNToFlacTask.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kClashQuestion =
    u"One of the output files already exists and will be overwritten.  Are you sure you want to continue?"_s;

class EncodeTabTest : public test::HeldQueueFixture {
protected:
    EncodeTab tab{controller};

    void choose(const QString &format) { ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format)); }
    /// Empty files will do: nothing runs.
    QStringList makeSources(const QStringList &names)
    {
        QStringList paths;
        for (const QString &name : names)
            paths.append(folder.write(name, ""));
        return paths;
    }
    void press(const QStringList &names)
    {
        tab.addMatchedFiles(makeSources(names));
        tab.executeCommand();
    }
    void pressIntoFolder(const QStringList &names)
    {
        prompts.expectOutputFolder(out.path());
        press(names);
    }
    [[nodiscard]] QStringList onlyArguments()
    {
        const auto tasks = queuedConversions();
        EXPECT_EQ(tasks.size(), 1U);
        return tasks.empty() ? QStringList() : tasks.front()->arguments();
    }
};

TEST_F(EncodeTabTest, NamesTheFormatsByTheirCells)
{
    const QStringList words{u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s};
    for (int cell = 0; cell < words.size(); ++cell) {
        tab.outputFormatMatrix.setSelectedIndex(cell);
        EXPECT_EQ(tab.outputFormat(), words.at(cell));
        EXPECT_EQ(tab.outputFormatMatrix.selectedRow(), cell / 2);
        EXPECT_EQ(tab.outputFormatMatrix.selectedColumn(), cell % 2);
    }
    tab.outputFormatMatrix.setSelectedIndex(6);
    EXPECT_EQ(tab.outputFormat(), QString());
}

TEST_F(EncodeTabTest, BeginsWithTheDefaultsOfTheSettings)
{
    EXPECT_EQ(tab.outputFormat(), u"FLAC");
    EXPECT_EQ(tab.flacSlider.integerValue(), 5);
    EXPECT_EQ(tab.flacSlider.minimum(), 0);
    EXPECT_EQ(tab.flacSlider.maximum(), 8);
    EXPECT_EQ(tab.apeSlider.stringValue(), u"2000");
    EXPECT_FALSE(tab.sourceEncodeButton.isOn());
    EXPECT_FALSE(tab.flacVerifyButton.isOn());
    EXPECT_EQ(tab.wavepackFormatMatrix.titles(), (QStringList{u"Fast"_s, u"High"_s}));
}

TEST_F(EncodeTabTest, TakesItsFirstStateFromTheSettings)
{
    set(u"encodeOutputFormat", 0);
    set(u"encodeFlacLevel", 8);
    set(u"encodeToSourceDirectory", 1);
    set(u"flacVerifyButton", 1);
    set(u"flacKeepForeignMetadataButton", 1);
    set(u"flacGenerateFFPButton", 1);
    const EncodeTab other(controller);
    EXPECT_EQ(other.outputFormat(), u"SHN");
    EXPECT_EQ(other.flacSlider.integerValue(), 8);
    EXPECT_TRUE(other.sourceEncodeButton.isOn());
    EXPECT_TRUE(other.flacVerifyButton.isOn());
    EXPECT_TRUE(other.flacKeepForeignMetadataButton.isOn());
    EXPECT_TRUE(other.generateFFPButton.isOn());
}

TEST_F(EncodeTabTest, StoresItsThreeFlacBoxesWheneverItRefreshesItsOptions)
{
    const SettingsStore &settings = SettingsStore::instance();
    tab.flacVerifyButton.setOn(true);
    tab.generateFFPButton.setOn(true);
    EXPECT_EQ(settings.integer(u"flacVerifyButton"_s), 0);
    choose(u"SHN"_s);
    EXPECT_EQ(settings.integer(u"flacVerifyButton"_s), 1);
    EXPECT_EQ(settings.integer(u"flacKeepForeignMetadataButton"_s), 0);
    EXPECT_EQ(settings.integer(u"flacGenerateFFPButton"_s), 1);
    tab.flacVerifyButton.setOn(false);
    tab.flacKeepForeignMetadataButton.setOn(true);
    tab.displayRelevantOptions();
    EXPECT_EQ(settings.integer(u"flacVerifyButton"_s), 0);
    EXPECT_EQ(settings.integer(u"flacKeepForeignMetadataButton"_s), 1);
}

TEST_F(EncodeTabTest, EnablesTheOptionsOfTheChosenFormat)
{
    const QList<std::pair<QString, QList<const Control *>>> rows{
        {u"SHN"_s, {&tab.generateMD5Button}},
        {u"FLAC"_s,
         {&tab.flacVerifyButton, &tab.flacLaxButton, &tab.flacSlider, &tab.flacKeepForeignMetadataButton,
          &tab.generateFFPButton}},
        {u"APE"_s, {&tab.apeSlider}},
        {u"WV"_s, {&tab.wavepackFormatMatrix}},
        {u"TTA"_s, {}},
        {u"M4A"_s, {}}};
    const QList<const Control *> options{&tab.generateMD5Button,
                                         &tab.flacVerifyButton,
                                         &tab.flacLaxButton,
                                         &tab.flacSlider,
                                         &tab.flacKeepForeignMetadataButton,
                                         &tab.apeSlider,
                                         &tab.wavepackFormatMatrix,
                                         &tab.generateFFPButton};
    for (const auto &[format, enabled] : rows) {
        choose(format);
        for (const Control *option : options)
            EXPECT_EQ(option->isEnabled(), enabled.contains(option)) << qPrintable(format);
    }
}

TEST_F(EncodeTabTest, DoesNothingForAnEmptyList)
{
    tab.deleteOriginalsButton.setOn(true);
    tab.executeCommand();
    EXPECT_EQ(queue().taskCount(), 0);
}

TEST_F(EncodeTabTest, EncodesToFlacInTheOrderOfTheListAndClearsIt)
{
    tab.flacSlider.setIntegerValue(8);
    tab.flacVerifyButton.setOn(true);
    pressIntoFolder({u"b10.wav"_s, u"b2.aiff"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_NE(std::dynamic_pointer_cast<EncodeFlacTask>(tasks[0]), nullptr);
    EXPECT_EQ(tasks[0]->launchPath(), tab.pathToCommandLineTools() + u"/flac"_s);
    EXPECT_EQ(tasks[0]->arguments(),
              (QStringList{u"-8"_s, u"-V"_s, folder.path(u"b2.aiff"_s), u"-o"_s, out.path(u"b2.flac"_s)}));
    EXPECT_EQ(tasks[0]->fileName(), folder.path(u"b2.aiff"_s));
    EXPECT_EQ(tasks[0]->title(), u"b2.aiff");
    EXPECT_EQ(tasks[0]->textField().text, u"b2.aiff");
    EXPECT_EQ(tasks[1]->outputFile(), out.path(u"b10.flac"_s));
    EXPECT_EQ(tasks[0]->results(), tasks[1]->results());
    EXPECT_EQ(tasks[0]->results()->memberCount(), 2);
    EXPECT_FALSE(tasks[0]->deleteOriginal());
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(EncodeTabTest, PassesNoLevelWithLax)
{
    tab.flacLaxButton.setOn(true);
    tab.flacSlider.setIntegerValue(8);
    pressIntoFolder({u"a.wav"_s});
    EXPECT_EQ(onlyArguments(), (QStringList{u"--lax"_s, folder.path(u"a.wav"_s), u"-o"_s, out.path(u"a.flac"_s)}));
}

TEST_F(EncodeTabTest, KeepsForeignMetadataWhenAsked)
{
    tab.flacKeepForeignMetadataButton.setOn(true);
    pressIntoFolder({u"a.wav"_s});
    EXPECT_EQ(onlyArguments().mid(0, 2), (QStringList{u"-5"_s, u"--keep-foreign-metadata"_s}));
}

TEST_F(EncodeTabTest, SendsEverySourceOfFlacToTheJobThatReadsIt)
{
    pressIntoFolder({u"1.SHN"_s, u"2.ape"_s, u"3.tta"_s, u"4.flac"_s, u"5"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 4U) << "TTA goes through a temporary WAV";
    const auto shorten = std::dynamic_pointer_cast<EncodeSHNToFlacTask>(tasks[0]);
    const auto monkeys = std::dynamic_pointer_cast<EncodeSHNToFlacTask>(tasks[1]);
    ASSERT_NE(shorten, nullptr);
    ASSERT_NE(monkeys, nullptr);
    EXPECT_EQ(shorten->type(), u"SHN");
    EXPECT_EQ(monkeys->type(), u"APE");
    EXPECT_EQ(shorten->outputPath(), out.path());
    EXPECT_EQ(shorten->outputFile(), out.path(u"1.flac"_s));
    EXPECT_EQ(shorten->fileName(), folder.path(u"1.SHN"_s));
    EXPECT_EQ(shorten->launchPath(), tab.pathToCommandLineTools() + u"/shntool"_s);
    EXPECT_EQ(shorten->arguments().at(8), u"cust ext=flac flac -5  -o %f -");
    for (std::size_t i = 2; i < 4; ++i)
        EXPECT_NE(std::dynamic_pointer_cast<EncodeFlacTask>(tasks[i]), nullptr) << i;
}

TEST_F(EncodeTabTest, EncodesAnySourceToShortenThroughShntool)
{
    choose(u"SHN"_s);
    pressIntoFolder({u"a.wav"_s, u"b.tta"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    for (const auto &task : tasks) {
        EXPECT_NE(std::dynamic_pointer_cast<EncodeSHNTask>(task), nullptr);
        EXPECT_EQ(task->launchPath(), tab.pathToCommandLineTools() + u"/shntool"_s);
    }
    EXPECT_EQ(tasks[1]->fileName(), folder.path(u"b.tta"_s));
    EXPECT_EQ(tasks[1]->outputFile(), out.path(u"b.shn"_s));
    EXPECT_EQ(tasks[1]->results()->memberCount(), 2);
}

TEST_F(EncodeTabTest, PutsOutputsBesideTheirSourcesWhenAsked)
{
    tab.sourceEncodeButton.setOn(true);
    press({u"cd1/a.wav"_s, u"cd2/a.wav"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_EQ(tasks[0]->outputFile(), folder.path(u"cd1/a.flac"_s));
    EXPECT_EQ(tasks[1]->outputFile(), folder.path(u"cd2/a.flac"_s));
}

TEST_F(EncodeTabTest, KeepsTheListWhenTheFolderChooserIsCancelled)
{
    prompts.expectOutputFolder(std::nullopt);
    press({u"a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames().size(), 1);
}

TEST_F(EncodeTabTest, AsksBeforeOriginalsAreDeleted)
{
    tab.deleteOriginalsButton.setOn(true);
    prompts.expectDeletionQuestion(u"Yes"_s);
    pressIntoFolder({u"a.wav"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 1U);
    EXPECT_TRUE(tasks[0]->deleteOriginal());
}

TEST_F(EncodeTabTest, KeepsTheListWhenOriginalsShallStay)
{
    tab.deleteOriginalsButton.setOn(true);
    prompts.expectDeletionQuestion(u"No"_s);
    press({u"a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames().size(), 1);
}

TEST_F(EncodeTabTest, DeletesWithoutAQuestionWhenTheSettingSaysSo)
{
    set(u"warnOnDelete", false);
    tab.deleteOriginalsButton.setOn(true);
    pressIntoFolder({u"a.wav"_s});
    EXPECT_TRUE(queuedConversions().at(0)->deleteOriginal());
}

TEST_F(EncodeTabTest, KeepsOriginalsThatShareAnOutput)
{
    set(u"warnOnDelete", false);
    tab.deleteOriginalsButton.setOn(true);
    // Some disks take names for the same that differ in their case only.
    pressIntoFolder({u"cd1/a.wav"_s, u"cd2/a.aiff"_s, u"cd2/b.wav"_s, u"cd2/Song.wav"_s, u"cd1/song.wav"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 5U);
    for (const auto &task : tasks)
        EXPECT_EQ(task->reasonToKeepSource().has_value(), task->fileName() != folder.path(u"cd2/b.wav"_s))
            << qPrintable(task->fileName());
}

TEST_F(EncodeTabTest, AsksBeforeAnOutputBesideItsSourceIsOverwritten)
{
    folder.write(u"a.flac"_s, "precious");
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(kClashQuestion, {u"No"_s, u"Yes"_s}, u"Yes"_s);
    press({u"a.wav"_s, u"b.wav"_s, u"c.shn"_s});
    const auto tasks = queuedConversions();
    ASSERT_EQ(tasks.size(), 3U);
    EXPECT_EQ(tasks[0]->arguments(),
              (QStringList{u"-5"_s, u"-f"_s, folder.path(u"a.wav"_s), u"-o"_s, folder.path(u"a.flac"_s)}));
    EXPECT_TRUE(tasks[1]->arguments().contains(u"-f"_s));
    EXPECT_FALSE((tasks[2]->arguments().join(u' ') + u' ').contains(u" -f "_s));
}

TEST_F(EncodeTabTest, AsksOnlyOnceForSeveralFolders)
{
    folder.write(u"cd1/a.flac"_s, "");
    folder.write(u"cd2/a.flac"_s, "");
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(kClashQuestion, {u"No"_s, u"Yes"_s}, u"Yes"_s);
    press({u"cd1/a.wav"_s, u"cd2/a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 2);
}

TEST_F(EncodeTabTest, KeepsTheListWhenNothingShallBeOverwritten)
{
    folder.write(u"a.flac"_s, "precious");
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(kClashQuestion, {u"No"_s, u"Yes"_s}, u"No"_s);
    press({u"a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_EQ(tab.fileNames().size(), 1);
}

TEST_F(EncodeTabTest, SeesNoClashInTheChosenFolder)
{
    out.write(u"a.flac"_s, "precious");
    pressIntoFolder({u"a.wav"_s});
    EXPECT_FALSE(onlyArguments().contains(u"-f"_s));
}

TEST_F(EncodeTabTest, SeesNoClashForShorten)
{
    folder.write(u"a.shn"_s, "precious");
    choose(u"SHN"_s);
    tab.sourceEncodeButton.setOn(true);
    press({u"a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 1);
}

TEST_F(EncodeTabTest, SeesNoClashWithAnExtensionInCapitals)
{
    folder.write(u"a.FLAC"_s, "precious");
    tab.sourceEncodeButton.setOn(true);
    press({u"a.wav"_s});
    EXPECT_FALSE(onlyArguments().contains(u"-f"_s));
}

TEST_F(EncodeTabTest, ListsFilesOfAnExtensionWhateverItsCase)
{
    for (const QString &name : {u"a.flac"_s, u"b.FLAC"_s, u".c.flac"_s, u"d.wav"_s, u"flac"_s, u"sub/e.flac"_s})
        folder.write(name, "");
    QStringList found = EncodeTab::getFilesFromOutputDirectory(folder.path(), u"flac"_s);
    found.sort();
    EXPECT_EQ(found, (QStringList{folder.path(u".c.flac"_s), folder.path(u"a.flac"_s), folder.path(u"b.FLAC"_s)}));
    EXPECT_TRUE(EncodeTab::getFilesFromOutputDirectory(folder.path(u"none"_s), u"flac"_s).isEmpty());
    EXPECT_TRUE(EncodeTab::isFileClash(found, {u"/x"_s, folder.path(u"a.flac"_s)}));
    EXPECT_FALSE(EncodeTab::isFileClash(found, {folder.path(u"b.flac"_s)}));
    EXPECT_FALSE(EncodeTab::isFileClash({}, {folder.path(u"a.flac"_s)}));
}

TEST_F(EncodeTabTest, QueuesNothingAndClearsTheListWithoutAFormat)
{
    tab.outputFormatMatrix.setSelectedIndex(9);
    pressIntoFolder({u"a.wav"_s});
    EXPECT_EQ(queue().taskCount(), 0);
    EXPECT_TRUE(tab.fileNames().isEmpty());
}

TEST_F(EncodeTabTest, LetsTheBatchCarryItsListJob)
{
    choose(u"SHN"_s);
    tab.generateMD5Button.setOn(true);
    tab.generateFFPButton.setOn(true);
    pressIntoFolder({u"a.wav"_s});
    const auto results = queuedConversions().at(0)->results();
    EXPECT_NE(std::dynamic_pointer_cast<CreateMD5Task>(results->taskAfterSetDone()), nullptr);

    choose(u"FLAC"_s);
    pressIntoFolder({u"b.wav"_s});
    const auto flacResults = queuedConversions().at(1)->results();
    EXPECT_NE(std::dynamic_pointer_cast<CreateFFPTask>(flacResults->taskAfterSetDone()), nullptr);

    tab.generateFFPButton.setOn(false);
    pressIntoFolder({u"c.wav"_s});
    EXPECT_EQ(queuedConversions().at(2)->results()->taskAfterSetDone(), nullptr);
}

} // namespace
} // namespace nurv
