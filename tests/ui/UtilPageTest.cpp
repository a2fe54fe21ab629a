// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/UtilPage.h"

#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/WaitUntil.h"
#include "ui/DesktopPrompts.h"
#include "ui/FileListView.h"
#include "ui/PanelDialog.h"
#include "ui/RadioMatrix.h"
#include "ui/WhenOpen.h"
#include "ui/WindowFixture.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class UtilPageTest : public ::testing::Test, public WindowFixture {
protected:
    UtilPageTest()
    {
        SettingsStore::instance().remove(u"utilRenamePreview"_s);
        tools.addAllReal();
        utilTab.setRevertDelay(0);
        controller.selectTab(u"util"_s);
        controller.taskQueue().hold();
        show();
    }

    template<typename Widget = QWidget>
    [[nodiscard]] Widget *part(const QString &objectName) const
    {
        auto *const widget = window.page(u"util"_s)->findChild<Widget *>(objectName);
        EXPECT_NE(widget, nullptr) << qPrintable(objectName);
        return widget;
    }
    void click(const QString &command)
    {
        const auto index = utilTab.utilCommandMatrix.titles().indexOf(command);
        part<RadioMatrix>(u"utilCommandMatrix"_s)->cell(static_cast<int>(index))->click();
    }
    [[nodiscard]] FileListView *list() const { return window.page(u"util"_s)->fileList(); }

    ProgramFolder tools;
};

} // namespace

TEST_F(UtilPageTest, ShowsWhatTheCommandUses)
{
    const QStringList groups{u"extractionGroup"_s, u"discGroup"_s, u"replayGainGroup"_s, u"renameGroup"_s};
    const auto expectOnly = [&](const QString &shown) {
        for (const QString &group : groups)
            EXPECT_EQ(part(group)->isVisible(), group == shown) << qPrintable(group);
    };
    expectOnly({});
    EXPECT_EQ(part<RadioMatrix>(u"utilCommandMatrix"_s)->selectedIndex(), -1);
    click(UtilTab::kCdExtraction);
    expectOnly(u"extractionGroup"_s);
    click(UtilTab::kReplayGain);
    expectOnly(u"replayGainGroup"_s);
    click(UtilTab::kBatchRename);
    expectOnly(u"renameGroup"_s);
    click(UtilTab::kDeEmphasis);
    expectOnly({});
}

TEST_F(UtilPageTest, TheListOfADiscHasColumnsUntilAnotherCommandIsChosen)
{
    utilTab.addFiles({writeWav(folder.path(u"a.wav"_s), {.rate = 96000, .bits = 24, .seconds = 2.5})});
    EXPECT_TRUE(list()->isHeaderHidden());
    prompts.expectAsk(u"You have chosen \"DVD Audio Disc.\" This will scan the files in the list for format information. Are "
                      u"you sure you want to continue?"_s,
                      {u"Yes"_s, u"No"_s}, u"Yes"_s);
    click(UtilTab::kDvdAudioDisc);
    EXPECT_FALSE(list()->isHeaderHidden());
    const QAbstractItemModel &model = *list()->model();
    ASSERT_EQ(model.columnCount(), 4);
    QStringList heads;
    QStringList cells;
    for (int column = 0; column < 4; ++column) {
        heads.append(model.headerData(column, Qt::Horizontal).toString());
        cells.append(model.index(0, column).data().toString());
        EXPECT_EQ(list()->header()->sectionResizeMode(column), QHeaderView::Interactive);
        EXPECT_GE(list()->columnWidth(column), list()->fontMetrics().horizontalAdvance(cells.last()));
    }
    EXPECT_EQ(heads, (QStringList{u"fileName"_s, u"length (min)"_s, u"sample rate"_s, u"bit depth"_s}));
    EXPECT_EQ(cells, (QStringList{u"a.wav"_s, u"0:02"_s, u"96000"_s, u"24"_s}));
    EXPECT_EQ(part<QLabel>(u"totalTimeField"_s)->text(), u"0:02");
    EXPECT_EQ(part<QLabel>(u"totalSizeField"_s)->text(), u"1.44 MB");
    click(UtilTab::kBatchRename);
    EXPECT_TRUE(list()->isHeaderHidden());
    EXPECT_EQ(model.columnCount(), 1);
    EXPECT_EQ(model.rowCount(), 1);
}

TEST_F(UtilPageTest, AClickOnTheChosenDiscDeselectsIt)
{
    prompts.expectAsk(u"You have chosen \"DVD Audio Disc.\" This will scan the files in the list for format information. Are "
                      u"you sure you want to continue?"_s,
                      {u"Yes"_s, u"No"_s}, u"Yes"_s);
    click(UtilTab::kDvdAudioDisc);
    EXPECT_EQ(utilTab.command(), UtilTab::kDvdAudioDisc);
    click(UtilTab::kDvdAudioDisc);
    EXPECT_EQ(part<RadioMatrix>(u"utilCommandMatrix"_s)->selectedIndex(), -1);
    EXPECT_EQ(utilTab.command(), QString());
    click(UtilTab::kReplayGain);
    click(UtilTab::kReplayGain);
    EXPECT_EQ(utilTab.command(), UtilTab::kReplayGain);
}

TEST_F(UtilPageTest, RenamesAfterAPrefixAndAPreviewAndUndoes)
{
    DesktopPrompts dialogs;
    NURVController other(dialogs, services, toolbox());
    UtilTab tab(other);
    const UtilPage page(tab);
    tab.setCommand(UtilTab::kBatchRename);
    auto *const undo = page.findChild<QPushButton *>(u"undoRenameButton"_s);
    ASSERT_NE(undo, nullptr);
    tab.addMatchedFiles({folder.write(u"a.flac"_s, "1"), folder.write(u"b.wav"_s, "2")});
    int step = 0;
    {
        WhenOpen<PanelDialog> prefix([&](PanelDialog &dialog) {
            EXPECT_EQ(dialog.windowTitle(), u"Batch Rename");
            QTest::keyClicks(dialog.findChild<QLineEdit *>(u"prefix"_s), u"x"_s);
            ++step;
            dialog.accept();
        });
        tab.renamePreviewButton.setOn(false);
        tab.executeCommand();
    }
    EXPECT_EQ(step, 1);
    EXPECT_EQ(folder.list(), (QStringList{u"x01.flac"_s, u"x02.wav"_s}));
    EXPECT_TRUE(undo->isEnabled());
    undo->click();
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"b.wav"_s}));
    EXPECT_FALSE(undo->isEnabled());
}

TEST_F(UtilPageTest, ItsMnemonicsReachEveryControl)
{
    const auto expectFromMnemonic = [this](Qt::Key key, const std::function<bool()> &happened) {
        QTest::keyClick(&window, key, Qt::AltModifier);
        EXPECT_TRUE(waitUntil(happened)) << "Alt+" << static_cast<char>(key);
    };
    const auto expectCommand = [&](Qt::Key key, const QString &command) {
        expectFromMnemonic(key, [&] { return utilTab.command() == command; });
    };
    expectCommand(Qt::Key_C, UtilTab::kCdExtraction);
    expectFromMnemonic(Qt::Key_O, [this] { return utilTab.oneTrack(); });
    expectCommand(Qt::Key_P, UtilTab::kReplayGain);
    expectFromMnemonic(Qt::Key_T, [this] { return utilTab.replayGainMatrix.selectedTitle() == u"Remove"; });
    expectFromMnemonic(Qt::Key_S, [this] { return utilTab.replayGainMatrix.selectedTitle() == u"Add"; });
    expectCommand(Qt::Key_M, UtilTab::kDeEmphasis);
    expectCommand(Qt::Key_B, UtilTab::kBatchRename);
    expectFromMnemonic(Qt::Key_V, [this] { return !utilTab.renamePreviewButton.isOn(); });
    prompts.expectAsk(u"You have chosen \"DVD Audio Disc.\" This will scan the files in the list for format information. Are "
                      u"you sure you want to continue?"_s,
                      {u"Yes"_s, u"No"_s}, u"Yes"_s);
    expectCommand(Qt::Key_D, UtilTab::kDvdAudioDisc);
}

} // namespace nurv::test
