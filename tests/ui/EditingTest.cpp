// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BatchWatch.h"
#include "app/UnfinishedFiles.h"
#include "engine/NURVTaskQueue.h"
#include "support/WaitUntil.h"
#include "ui/FileListView.h"
#include "ui/JobInState.h"
#include "ui/pages/TabPage.h"
#include "ui/StatusWindow.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

/// What the Edit and the Jobs menu do to lists and jobs.
class EditingTest : public ::testing::Test, public WindowFixture {
protected:
    QAction *action(const QString &objectName) const { return find<QAction>(objectName); }
    QPushButton *statusButton(const QString &objectName) const
    {
        return window.statusWindow()->findChild<QPushButton *>(objectName);
    }
    std::shared_ptr<JobInState> add(const QString &title)
    {
        auto job = std::make_shared<JobInState>(queue, title);
        queue.addTask(job);
        return job;
    }

    NURVTaskQueue &queue = controller.taskQueue();
    QString first = folder.write(u"1.wav"_s, "x");
    QString second = folder.write(u"2.wav"_s, "x");
};

} // namespace

TEST_F(EditingTest, UndoPutsBackWhatWasTakenOffTheListThatShows)
{
    controller.selectTab(u"encode"_s);
    show();
    EXPECT_FALSE(action(u"undoAction"_s)->isEnabled());
    EXPECT_EQ(action(u"undoAction"_s)->text(), u"&Undo"_s);
    encodeTab.addFiles({first, second});
    window.page(u"encode"_s)->fileList()->setFocus();
    QTest::keyClick(window.page(u"encode"_s)->fileList(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_THAT(encodeTab.selectedRows(), ElementsAre(0, 1));
    QTest::keyClick(window.page(u"encode"_s)->fileList(), Qt::Key_Delete);
    EXPECT_THAT(encodeTab.fileNames(), IsEmpty());
    EXPECT_EQ(action(u"undoAction"_s)->text(), u"&Undo: Put 2 Files Back"_s);

    controller.selectTab(u"decode"_s);
    EXPECT_FALSE(action(u"undoAction"_s)->isEnabled()) << "of another list";
    controller.selectTab(NURVController::kAboutLabel);
    EXPECT_FALSE(action(u"undoAction"_s)->isEnabled());
    EXPECT_FALSE(action(u"selectAllAction"_s)->isEnabled());
    controller.selectTab(u"encode"_s);
    window.page(u"encode"_s)->fileList()->setFocus();
    QTest::keyClick(window.page(u"encode"_s)->fileList(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_THAT(encodeTab.fileNames(), ElementsAre(first, second));
    EXPECT_FALSE(action(u"undoAction"_s)->isEnabled());
}

TEST_F(EditingTest, InAFieldTheKeysEditItsText)
{
    controller.selectTab(u"Tags"_s);
    show();
    tagsTab.addMatchedFiles({first});
    tagsTab.clearFiles();
    auto *const title = find<QLineEdit>(u"titleText"_s);
    title->setFocus();
    QTest::keyClicks(title, u"ab"_s);
    QTest::keyClick(title, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(title->text(), QString());
    EXPECT_THAT(tagsTab.fileNames(), IsEmpty());
}

TEST_F(EditingTest, TheMenuSelectsAndRemoves)
{
    controller.selectTab(u"encode"_s);
    show();
    EXPECT_FALSE(action(u"selectAllAction"_s)->isEnabled());
    EXPECT_FALSE(action(u"removeAction"_s)->isEnabled());
    encodeTab.addFiles({first, second});
    EXPECT_FALSE(action(u"removeAction"_s)->isEnabled()) << "nothing is selected";
    action(u"selectAllAction"_s)->trigger();
    EXPECT_THAT(encodeTab.selectedRows(), ElementsAre(0, 1));
    encodeTab.setSelectedRows({1});
    action(u"removeAction"_s)->trigger();
    EXPECT_THAT(encodeTab.fileNames(), ElementsAre(first));
}

TEST_F(EditingTest, PauseHoldsTheWaitingJobsUntilItIsOver)
{
    show();
    EXPECT_FALSE(action(u"pauseAction"_s)->isEnabled());
    const auto running = add(u"running"_s);
    const auto other = add(u"other"_s);
    const auto waiting = add(u"waiting"_s);
    ASSERT_TRUE(other->isActive());
    ASSERT_FALSE(waiting->isActive());
    action(u"pauseAction"_s)->trigger();
    EXPECT_TRUE(queue.isHeld());
    EXPECT_TRUE(statusButton(u"pauseButton"_s)->isChecked());
    window.batch().flush();
    EXPECT_TRUE(find<QWidget>(u"progressLine"_s)->isVisible());
    running->finish();
    EXPECT_FALSE(waiting->isActive()) << "a job has begun although they are held";
    statusButton(u"pauseButton"_s)->click();
    EXPECT_FALSE(queue.isHeld());
    EXPECT_FALSE(action(u"pauseAction"_s)->isChecked());
    EXPECT_TRUE(waiting->isActive());
    other->finish();
    waiting->finish();
}

TEST_F(EditingTest, AnEmptyQueueIsHeldNoLonger)
{
    show();
    const auto running = add(u"running"_s);
    action(u"pauseAction"_s)->trigger();
    running->finish();
    EXPECT_FALSE(queue.isHeld());
    EXPECT_FALSE(action(u"pauseAction"_s)->isEnabled());
    const auto next = add(u"next"_s);
    EXPECT_TRUE(next->isActive());
    next->finish();
}

TEST_F(EditingTest, MenuAndButtonPutFailedFilesBack)
{
    encodeTab.outputFormatMatrix.selectTitle(u"FLAC"_s);
    encodeTab.sourceEncodeButton.setOn(true);
    controller.selectTab(u"encode"_s);
    show();
    EXPECT_FALSE(action(u"putBackAction"_s)->isEnabled());
    EXPECT_FALSE(statusButton(u"putBackButton"_s)->isEnabled());
    for (const QString &objectName : {u"menu"_s, u"button"_s}) {
        encodeTab.addFiles({first});
        ASSERT_TRUE(controller.execute(encodeTab));
        EXPECT_THAT(encodeTab.fileNames(), IsEmpty());
        ASSERT_TRUE(waitUntil([this] { return window.unfinishedFiles().count() == 1; })) << "no WAV file that is one";
        ASSERT_TRUE(action(u"putBackAction"_s)->isEnabled());
        ASSERT_TRUE(statusButton(u"putBackButton"_s)->isEnabled());
        if (objectName == u"menu")
            action(u"putBackAction"_s)->trigger();
        else
            statusButton(u"putBackButton"_s)->click();
        EXPECT_THAT(encodeTab.fileNames(), ElementsAre(first));
        EXPECT_FALSE(statusButton(u"putBackButton"_s)->isEnabled());
        encodeTab.clearFiles();
    }
}

} // namespace nurv::test
