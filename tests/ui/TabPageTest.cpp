// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/TabPage.h"

#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"
#include "ui/RadioMatrix.h"
#include "ui/WindowFixture.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class TabPageTest : public ::testing::Test, public WindowFixture {
protected:
    TabPage *openPage(const QString &label)
    {
        controller.selectTab(label);
        return window.page(label);
    }
};

template<typename Widget>
Widget *part(QWidget *page, const QString &objectName)
{
    auto *const widget = page->findChild<Widget *>(objectName);
    EXPECT_NE(widget, nullptr) << objectName.toStdString();
    return widget;
}

} // namespace

TEST_F(TabPageTest, TheAddButtonAsksForFilesAndListsThem)
{
    TabPage *const page = openPage(u"decode"_s);
    show();
    prompts.expectFilesToAdd(controller, u"decode"_s, {folder.write(u"a.flac"_s, "x"), folder.write(u"b.flac"_s, "x")});
    QTest::mouseClick(part<QPushButton>(page, u"addButton"_s), Qt::LeftButton);
    EXPECT_TRUE(page->isAddingFiles());
    ASSERT_TRUE(waitUntil([&] { return page->fileList()->model()->rowCount() == 2; }));
    EXPECT_EQ(part<QLabel>(page, u"fileCount"_s)->text(), u"2 files"_s);
}

TEST_F(TabPageTest, ExecuteAndClearWaitForFiles)
{
    TabPage *const page = openPage(u"decode"_s);
    auto *const execute = part<QPushButton>(page, u"executeButton"_s);
    auto *const clear = part<QPushButton>(page, u"clearButton"_s);
    EXPECT_FALSE(execute->isEnabled());
    EXPECT_FALSE(clear->isEnabled());
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    EXPECT_TRUE(execute->isEnabled());
    clear->click();
    EXPECT_TRUE(decodeTab.fileNames().isEmpty());
    EXPECT_FALSE(execute->isEnabled());
}

TEST_F(TabPageTest, HoldsExecuteBackWhileFoldersAreBeingSearched)
{
    TabPage *const page = openPage(u"decode"_s);
    show();
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    auto *const execute = part<QPushButton>(page, u"executeButton"_s);
    ASSERT_TRUE(execute->isEnabled());
    for (int number = 0; number < 300; ++number)
        folder.write(u"many/%1.flac"_s.arg(number), "x");

    page->addPaths({folder.path(u"many"_s)});
    EXPECT_FALSE(execute->isEnabled());
    EXPECT_TRUE(part<QProgressBar>(page, u"addingFilesBar"_s)->isVisible());
    EXPECT_EQ(part<QLabel>(page, u"fileCount"_s)->text(), u"Adding files…"_s);
    ASSERT_TRUE(waitUntil([&] { return !page->isAddingFiles(); }));
    EXPECT_EQ(decodeTab.fileNames().size(), 301);
    EXPECT_TRUE(execute->isEnabled());
    EXPECT_FALSE(part<QProgressBar>(page, u"addingFilesBar"_s)->isVisible());
}

TEST_F(TabPageTest, ExecuteAsksForTheOutputFolderAndKeepsTheListWhenThatIsCancelled)
{
    TabPage *const page = openPage(u"decode"_s);
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    prompts.expectOutputFolder(std::nullopt);
    part<QPushButton>(page, u"executeButton"_s)->click();
    EXPECT_EQ(prompts.unaskedCount(), 0);
    EXPECT_EQ(decodeTab.fileNames().size(), 1);
}

TEST_F(TabPageTest, OffersTheOptionsOfTheChosenFormatOnly)
{
    TabPage *const page = openPage(u"encode"_s);
    auto *const formats = part<RadioMatrix>(page, u"outputFormatMatrix"_s);
    const auto enabled = [page](const QString &name) { return part<QWidget>(page, name)->isEnabled(); };

    EXPECT_EQ(formats->selectedIndex(), 2) << "FLAC is the default";
    EXPECT_TRUE(enabled(u"flacSlider"_s));
    EXPECT_TRUE(enabled(u"generateFFPButton"_s));
    EXPECT_FALSE(enabled(u"generateMD5Button"_s));
    EXPECT_FALSE(enabled(u"apeSlider"_s));
    auto *const lax = part<QCheckBox>(page, u"flacLaxButton"_s);
    lax->click();
    EXPECT_FALSE(enabled(u"flacSlider"_s)) << "which has no effect then";
    formats->cell(0)->click();
    formats->cell(2)->click();
    EXPECT_FALSE(enabled(u"flacSlider"_s));
    lax->click();
    EXPECT_TRUE(enabled(u"flacSlider"_s));

    formats->cell(0)->click(); // Shorten
    EXPECT_FALSE(enabled(u"flacSlider"_s));
    EXPECT_FALSE(enabled(u"flacVerifyButton"_s));
    EXPECT_TRUE(enabled(u"generateMD5Button"_s));

    formats->cell(1)->click(); // WavPack
    EXPECT_FALSE(enabled(u"generateMD5Button"_s));
    EXPECT_TRUE(enabled(u"wavepackFormatMatrix"_s));

    formats->cell(4)->click(); // Monkey's Audio
    EXPECT_TRUE(enabled(u"apeSlider"_s));
    EXPECT_FALSE(enabled(u"wavepackFormatMatrix"_s));

    for (const int withoutOptions : {3, 5}) { // TTA, Apple Lossless
        formats->cell(withoutOptions)->click();
        for (const QString &name : {u"flacSlider"_s, u"flacLaxButton"_s, u"generateMD5Button"_s, u"apeSlider"_s,
                                    u"wavepackFormatMatrix"_s, u"generateFFPButton"_s}) {
            EXPECT_FALSE(enabled(name)) << name.toStdString();
        }
    }
}

TEST_F(TabPageTest, ShowsTheFlacOptionsOfDecodingOnlyWithFlacFilesInTheList)
{
    TabPage *const page = openPage(u"decode"_s);
    show();
    auto *const group = part<QGroupBox>(page, u"flacGroup"_s);
    EXPECT_FALSE(group->isVisible());
    decodeTab.addFiles({folder.write(u"a.shn"_s, "x")});
    EXPECT_FALSE(group->isVisible());
    decodeTab.addFiles({folder.write(u"b.flac"_s, "x")});
    EXPECT_TRUE(group->isVisible());
    EXPECT_TRUE(part<QCheckBox>(page, u"decodeFlacThroughErrors"_s)->isVisible());
    decodeTab.clearFiles();
    EXPECT_FALSE(group->isVisible());
}

TEST_F(TabPageTest, ListsAHundredThousandFilesFluently)
{
    TabPage *const page = openPage(u"decode"_s);
    show();
    FileIntake intake;
    for (int number = 0; number < 100'000; ++number)
        intake.accepted.append(u"/music/album %1/track %2.flac"_s.arg(number / 20).arg(number));
    QElapsedTimer clock;
    clock.start();
    decodeTab.addCollected(intake);
    handleWaitingEvents();
    page->fileList()->scrollToBottom();
    handleWaitingEvents();
    EXPECT_LT(clock.elapsed(), 60'000);
    EXPECT_EQ(page->fileList()->model()->rowCount(), 100'000);
    clock.restart();
    (void)page->fileList()->viewport()->grab();
    EXPECT_LT(clock.elapsed(), 20'000);
}

TEST_F(TabPageTest, ElidesNothingButScrollsToTheEndOfALongName)
{
    TabPage *const page = openPage(u"decode"_s);
    show();
    decodeTab.addFiles({folder.write(QString(200, u'W') + u".flac"_s, "x")});
    handleWaitingEvents();
    EXPECT_GT(page->fileList()->horizontalScrollBar()->maximum(), 0);
}

TEST_F(TabPageTest, FilesThatArriveWhileTheUserIsAskedStayOnTheList)
{
    TabPage *const page = openPage(u"encode"_s);
    show();
    encodeTab.sourceEncodeButton.setOn(true);
    encodeTab.deleteOriginalsButton.setOn(true);
    encodeTab.addFiles({folder.write(u"a.wav"_s, "no sound")});
    ASSERT_TRUE(SettingsStore::instance().boolean(u"warnOnDelete"_s));
    prompts.expectDeletionQuestion(u"Yes"_s);
    // As an open request over the bus does while the question is on the screen.
    prompts.duringNextQuestion([this] {
        FileIntake late;
        late.accepted = {folder.path(u"b.wav"_s)};
        encodeTab.addCollected(late);
    });
    page->execute();
    EXPECT_EQ(encodeTab.fileNames(), QStringList{folder.path(u"b.wav"_s)});
    EXPECT_EQ(controller.taskQueue().panelArray().size(), 1U);
    ASSERT_TRUE(waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
}

TEST_F(TabPageTest, TellsTheNamesOfADropThatAreNoValidUtf8)
{
    TabPage *const page = openPage(u"decode"_s);
    decodeTab.setRefusalMessageDelay(0);
    prompts.expectAsk({.title = u"Some files could not be read and were skipped"_s,
                       .message = u"File names that are not valid UTF-8:\n/music/R\\xE9.flac"_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    page->addFiles({.paths = {folder.write(u"a.flac"_s, "x")}, .refused = {u"/music/R\\xE9.flac"_s}});
    ASSERT_TRUE(waitUntil([this] { return prompts.unaskedCount() == 0; }));
    EXPECT_EQ(decodeTab.fileNames().size(), 1);
}

} // namespace nurv::test
