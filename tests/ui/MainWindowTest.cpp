// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainWindow.h"

#include "engine/NURVTaskQueue.h"
#include "programs/ExternalPrograms.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"
#include "ui/JobInState.h"
#include "ui/OutputWindow.h"
#include "ui/pages/AboutPage.h"
#include "ui/pages/TabPage.h"
#include "ui/StatusWindow.h"
#include "ui/WindowFixture.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class MainWindowTest : public ::testing::Test, public WindowFixture {
protected:
    QStringList pageTitles() const
    {
        QStringList titles;
        for (int index = 0; index < window.tabView()->count(); ++index)
            titles.append(window.tabView()->tabText(index));
        return titles;
    }
    QAction *action(const QString &name) const { return window.findChild<QAction *>(name); }
    void expectQuitQuestion(const QString &answer)
    {
        prompts.expectAsk(u"Are you sure you want to quit?"_s, {u"No"_s, u"Yes"_s}, answer);
    }
    void expectTasksQuestion(const QString &message, const QString &answer)
    {
        prompts.expectAsk({.title = u"Tasks in Progress"_s, .message = message, .buttons = {u"No"_s, u"Yes"_s}},
                          answer);
    }
};

/// Every widget that a user can do something with.
QList<QWidget *> interactiveWidgets(const QWidget &root)
{
    QList<QWidget *> found;
    for (QWidget *const widget : root.findChildren<QWidget *>()) {
        const bool isInteractive = qobject_cast<QAbstractButton *>(widget) || qobject_cast<QAbstractItemView *>(widget)
                                   || (qobject_cast<QAbstractSlider *>(widget) && !qobject_cast<QScrollBar *>(widget))
                                   || qobject_cast<QLineEdit *>(widget) || qobject_cast<QPlainTextEdit *>(widget);
        // The parts that Qt's own widgets are made of have names of its own.
        const bool isPart = widget->objectName().startsWith(u"qt_"_s) || widget->inherits("QHeaderView")
                            || widget->inherits("QComboBoxListView")
                            || widget->inherits("QTableCornerButton") || widget->inherits("QLineEditIconButton")
                            || (widget->parent() != nullptr
                                && (widget->parent()->inherits("QTabBar") || widget->parent()->inherits("QMenuBar")));
        if (isInteractive && !isPart)
            found.append(widget);
    }
    return found;
}

void expectNames(const QWidget &root)
{
    const QList<QWidget *> widgets = interactiveWidgets(root);
    EXPECT_FALSE(widgets.isEmpty());
    for (const QWidget *const widget : widgets) {
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
        EXPECT_FALSE(widget->accessibleName().isEmpty())
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    }
}

} // namespace

TEST_F(MainWindowTest, ShowsAPageForEveryToolThatIsThereAndTheAboutPageLast)
{
    EXPECT_EQ(pageTitles(), (QStringList{u"Decode"_s, u"Encode"_s, u"Checksum"_s, u"SHNtool"_s, u"Fix SBE"_s, u"Util"_s, u"Tags"_s, u"Lossy"_s, u"About"_s}));
}

TEST_F(MainWindowTest, GoesFromPageToPageByShortcutsAndTellsTheController)
{
    show();
    QTest::keyClick(&window, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"encode"_s);
    EXPECT_EQ(window.tabView()->currentIndex(), 1);
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"checksum"_s);
    QTest::keyClick(&window, Qt::Key_4, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"shntool"_s);
    QTest::keyClick(&window, Qt::Key_5, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"fix SBE"_s);
    QTest::keyClick(&window, Qt::Key_6, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"util"_s);
    QTest::keyClick(&window, Qt::Key_7, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"Tags"_s);
    QTest::keyClick(&window, Qt::Key_8, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"lossy"_s);
    QTest::keyClick(&window, Qt::Key_9, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);
    EXPECT_FALSE(action(u"addFilesAction"_s)->isEnabled());
    QTest::keyClick(&window, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
    EXPECT_TRUE(action(u"addFilesAction"_s)->isEnabled());
}

TEST_F(MainWindowTest, AddsFilesFoldersAndExecutesByShortcuts)
{
    controller.selectTab(u"decode"_s);
    show();
    prompts.expectFilesToAdd(controller, u"decode"_s, {folder.write(u"a.flac"_s, "x")});
    QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([this] { return decodeTab.fileNames().size() == 1; }));

    folder.write(u"album/b.flac"_s, "x");
    prompts.expectFolder({.title = u"Choose a folder to add"_s, .buttonText = u"Add Folder"_s},
                         folder.path(u"album"_s));
    QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(waitUntil([this] { return decodeTab.fileNames().size() == 2; }));

    prompts.expectOutputFolder(std::nullopt);
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(prompts.unaskedCount(), 0);
}

TEST_F(MainWindowTest, ADropOnTheWindowGoesToThePageThatShows)
{
    controller.selectTab(u"encode"_s);
    show();
    folder.write(u"album/a.wav"_s, "x");
    folder.write(u"album/notes.txt"_s, "x");
    ASSERT_TRUE(dropOn(&window, {folder.path(u"album"_s)}));
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 1; }));
    EXPECT_TRUE(encodeTab.fileNames().first().endsWith(u"/album/a.wav"_s));
}

TEST_F(MainWindowTest, ADropOnTheAboutPageGoesToThePagesOfTheFiles)
{
    controller.selectTab(u"about"_s);
    show();
    ASSERT_TRUE(dropOn(&window, {folder.write(u"a.flac"_s, "x"), folder.write(u"b.wav"_s, "x")}));
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 1; }));
    EXPECT_EQ(decodeTab.fileNames().size(), 1);
    EXPECT_EQ(window.tabView()->tabText(window.tabView()->currentIndex()), u"Encode"_s);
}

TEST_F(MainWindowTest, StaysWhenTheUserDoesNotWantToQuit)
{
    show();
    QSignalSpy quit(&window, &MainWindow::quitConfirmed);
    expectQuitQuestion(u"No"_s);
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(quit.isEmpty());
}

TEST_F(MainWindowTest, ClosesAfterTheQuitQuestion)
{
    show();
    QSignalSpy quit(&window, &MainWindow::quitConfirmed);
    expectQuitQuestion(u"Yes"_s);
    EXPECT_TRUE(window.close());
    EXPECT_EQ(quit.size(), 1);
}

TEST_F(MainWindowTest, AsksASecondTimeWhileJobsAreQueuedAndStaysOnNo)
{
    show();
    const auto job = std::make_shared<JobInState>(controller.taskQueue(), u"1.wav"_s);
    controller.taskQueue().addTask(job);
    QSignalSpy quit(&window, &MainWindow::quitConfirmed);
    expectQuitQuestion(u"Yes"_s);
    expectTasksQuestion(u"There are 1 tasks in the queue.  Are you sure you want to quit?"_s, u"No"_s);
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(quit.isEmpty());
    EXPECT_TRUE(window.isVisible());
    job->finish();
}

TEST_F(MainWindowTest, TheQuitCommandAsksOnlyWhileJobsAreQueued)
{
    show();
    QSignalSpy quit(&window, &MainWindow::quitConfirmed);
    const auto job = std::make_shared<JobInState>(controller.taskQueue(), u"1.wav"_s);
    controller.taskQueue().addTask(job);
    expectTasksQuestion(u"There are 1 tasks in the queue.  Are you sure you want to quit?"_s, u"No"_s);
    window.requestQuit();
    EXPECT_TRUE(quit.isEmpty());
    job->finish();
    window.activateWindow();
    action(u"quitAction"_s)->trigger();
    EXPECT_EQ(quit.size(), 1);
}

TEST_F(MainWindowTest, RemembersItsPageAndSize)
{
    controller.selectTab(u"encode"_s);
    show();
    window.resize(777, 555);
    handleWaitingEvents();
    window.saveState();
    NURVController otherController(prompts, services, toolbox());
    DecodeTab otherDecodeTab(otherController);
    EncodeTab otherEncodeTab(otherController);
    MainWindow other(otherController);
    EXPECT_EQ(other.size(), QSize(777, 555));
    EXPECT_EQ(otherController.selectedTabViewItem(), u"encode"_s);
    EXPECT_EQ(other.tabView()->currentIndex(), 1);
}

TEST_F(MainWindowTest, StartsWithTheKeyboardInTheList)
{
    controller.selectTab(u"encode"_s);
    show();
    EXPECT_EQ(QApplication::focusWidget(), window.page(u"encode"_s)->fileList());
}

TEST_F(MainWindowTest, F10GoesToTheMenus)
{
    show();
    QTest::keyClick(&window, Qt::Key_F10);
    EXPECT_TRUE(waitUntil([this] { return window.menuBar()->activeAction() == window.menuBar()->actions().first(); }));
    if (QWidget *const menu = QApplication::activePopupWidget())
        menu->close();
}

TEST_F(MainWindowTest, IsNeverLargerThanItsScreen)
{
    const QRect room = window.screen()->availableGeometry();
    window.resize(room.size() * 3);
    window.saveState();
    NURVController otherController(prompts, services, toolbox());
    DecodeTab otherDecodeTab(otherController);
    const MainWindow other(otherController);
    EXPECT_LE(other.width(), room.width());
    EXPECT_LE(other.height(), room.height());
    EXPECT_TRUE(room.contains(other.geometry().topLeft()));
    SettingsStore::instance().remove(u"window/geometry"_s);
}

TEST_F(MainWindowTest, OpensAnOutputWindowForEachReportOneBelowTheOther)
{
    show();
    controller.taskQueue().showOutputWindow(u"first\n"_s, u"One"_s);
    controller.taskQueue().showOutputWindow(u"second\n"_s, std::nullopt);
    const QList<OutputWindow *> windows = window.outputWindows();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_EQ(windows.at(0)->windowTitle(), u"One"_s);
    EXPECT_EQ(windows.at(0)->text(), u"first\n"_s);
    EXPECT_EQ(windows.at(1)->windowTitle(), u"Output"_s);
    EXPECT_NE(windows.at(0)->pos(), windows.at(1)->pos());
    windows.at(0)->close();
    EXPECT_TRUE(waitUntil([this] { return window.outputWindows().size() == 1; }));
}

TEST_F(MainWindowTest, GivesEveryReportAWindowOfItsOwn)
{
    show();
    for (int number = 1; number <= 30; ++number)
        controller.taskQueue().showOutputWindow(u"report %1"_s.arg(number), u"job %1"_s.arg(number));
    ASSERT_TRUE(waitUntil([this] { return window.outputWindows().size() == 30; }));
    const QList<OutputWindow *> windows = window.outputWindows();
    for (int number = 1; number <= 30; ++number)
        EXPECT_EQ(windows.at(number - 1)->text(), u"report %1"_s.arg(number));
}

TEST_F(MainWindowTest, CanBeUsedWithTheKeyboardAlone)
{
    controller.selectTab(u"decode"_s);
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    show();
    window.page(u"decode"_s)->fileList()->setFocus();
    QStringList reached;
    for (int step = 0; step < 12; ++step) {
        reached.append(QApplication::focusWidget() != nullptr ? QApplication::focusWidget()->objectName() : QString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QStringList wanted{u"fileList"_s,
                             u"outputFormatMatrix.0"_s,
                             u"sourceDecodeButton"_s,
                             u"deleteOriginalsButton"_s,
                             u"decodeFlacThroughErrors"_s,
                             u"flacKeepForeignMetadataButton"_s,
                             u"addButton"_s,
                             u"clearButton"_s,
                             u"executeButton"_s};
    qsizetype place = -1;
    for (const QString &name : wanted) {
        const qsizetype next = reached.indexOf(name, place + 1);
        EXPECT_GT(next, place) << name.toStdString() << " in " << reached.join(u' ').toStdString();
        place = next;
    }
}

TEST_F(MainWindowTest, EveryInteractiveWidgetHasAnObjectNameAndAnAccessibleName)
{
    expectNames(window);
    expectNames(*window.statusWindow());
    OutputWindow output(prompts);
    expectNames(output);
}

TEST_F(MainWindowTest, MnemonicsOfAPageDoNotClash)
{
    for (const QString &label : {u"decode"_s, u"encode"_s, u"checksum"_s, u"shntool"_s, u"fix SBE"_s, u"util"_s, u"Tags"_s, u"lossy"_s}) {
        QHash<QChar, QString> owners;
        QStringList texts;
        for (const QAction *const menu : window.menuBar()->actions())
            texts.append(menu->text());
        for (const QAbstractButton *const button : window.page(label)->findChildren<QAbstractButton *>())
            texts.append(button->text());
        for (const QLabel *const caption : window.page(label)->findChildren<QLabel *>()) {
            if (caption->buddy())
                texts.append(caption->text());
        }
        for (const QString &text : std::as_const(texts)) {
            const qsizetype mark = text.indexOf(u'&');
            if (mark < 0)
                continue;
            const QChar key = text.at(mark + 1).toLower();
            EXPECT_FALSE(owners.contains(key)) << text.toStdString() << " and " << owners.value(key).toStdString();
            owners.insert(key, text);
        }
        EXPECT_GE(owners.size(), 8);
    }
}

TEST_F(MainWindowTest, TheAboutPageListsEveryExternalProgram)
{
    controller.selectTab(u"about"_s);
    auto *const about = window.findChild<AboutPage *>();
    QSignalSpy checked(about, &AboutPage::programsChecked);
    show();
    ASSERT_TRUE(waitUntil([&] { return checked.size() == 1; }));
    EXPECT_EQ(about->findChild<QLabel *>(u"NurvTitleTextField"_s)->text(), NURVController::titleText());
    EXPECT_EQ(about->findChild<QLabel *>(u"buildTextField"_s)->text(), NURVController::buildText());
    const auto *const table = about->findChild<QTreeWidget *>(u"externalPrograms"_s);
    ASSERT_EQ(table->topLevelItemCount(), static_cast<int>(externalPrograms().size()));
    bool hasFlac = false;
    for (int row = 0; row < table->topLevelItemCount(); ++row) {
        const QTreeWidgetItem *const item = table->topLevelItem(row);
        EXPECT_FALSE(item->text(1).isEmpty()) << item->text(0).toStdString();
        if (item->text(0) == u"flac"_s) {
            hasFlac = true;
            EXPECT_EQ(item->text(1), u"found"_s);
            EXPECT_TRUE(item->text(2).startsWith(u"1."_s)) << item->text(2).toStdString();
            EXPECT_EQ(item->text(3), u"flac"_s);
        } else if (item->text(0) == u"shntool"_s) {
            EXPECT_EQ(item->text(3), u"included"_s);
        } else if (item->text(0) == u"shorten"_s) {
            EXPECT_EQ(item->text(1), u"found"_s);
            EXPECT_EQ(item->text(3), u"included"_s);
        }
    }
    EXPECT_TRUE(hasFlac);
}

TEST_F(MainWindowTest, TheBuiltInIconIsThere)
{
    EXPECT_FALSE(window.windowIcon().pixmap(64, 64).isNull());
}

TEST_F(MainWindowTest, CancelsAllAndRemovesErrorsByShortcutsWhileThereIsSomethingToDo)
{
    show();
    QAction *const cancelAll = action(u"cancelAllAction"_s);
    QAction *const removeErrors = action(u"removeErrorsAction"_s);
    EXPECT_FALSE(cancelAll->isEnabled());
    EXPECT_FALSE(removeErrors->isEnabled());
    const auto job = std::make_shared<JobInState>(controller.taskQueue(), u"1.wav"_s);
    controller.taskQueue().addTask(job);
    ASSERT_TRUE(cancelAll->isEnabled());
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(job->cancels, 1);
    job->finish(true);
    EXPECT_FALSE(cancelAll->isEnabled());
    ASSERT_TRUE(waitUntil([&] { return removeErrors->isEnabled(); }));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(controller.taskQueue().panelArray().empty());
    EXPECT_TRUE(waitUntil([&] { return !removeErrors->isEnabled(); }));
}

TEST_F(MainWindowTest, RemembersTheSizesOfTheStatusAndTheOutputWindow)
{
    show();
    window.statusWindow()->bringToFront();
    window.statusWindow()->resize(511, 333);
    controller.taskQueue().showOutputWindow(u"report\n"_s, u"One"_s);
    window.outputWindows().first()->resize(612, 344);
    handleWaitingEvents();
    window.saveState();
    MainWindow other(controller);
    EXPECT_EQ(other.statusWindow()->size(), QSize(511, 333));
    window.outputWindows().first()->resize(622, 355);
    handleWaitingEvents();
    window.outputWindows().first()->close();
    OutputWindow next(prompts);
    EXPECT_TRUE(next.hasKeptPlace());
    EXPECT_EQ(next.size(), QSize(622, 355));
}

TEST_F(MainWindowTest, StoresTheOptionsThatAreStoredWithTheChoiceOfAFormat)
{
    SettingsStore &settings = SettingsStore::instance();
    encodeTab.flacVerifyButton.setOn(true);
    encodeTab.generateFFPButton.setOn(false);
    window.saveState();
    EXPECT_EQ(settings.integer(u"flacVerifyButton"_s), 1);
    EXPECT_EQ(settings.integer(u"flacGenerateFFPButton"_s), 0);
    encodeTab.flacVerifyButton.setOn(false);
    encodeTab.generateFFPButton.setOn(true);
    window.saveState();
    EXPECT_EQ(settings.integer(u"flacVerifyButton"_s), 0);
    EXPECT_EQ(settings.integer(u"flacGenerateFFPButton"_s), 1);
}

TEST_F(MainWindowTest, AsksNothingAndHidesEveryWindowWhenItHasToGo)
{
    show();
    const auto job = std::make_shared<JobInState>(controller.taskQueue(), u"1.wav"_s);
    controller.taskQueue().addTask(job);
    window.statusWindow()->bringToFront();
    controller.taskQueue().showOutputWindow(u"report\n"_s, u"One"_s);
    QSignalSpy quit(&window, &MainWindow::quitConfirmed);
    window.prepareToQuit();
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(window.statusWindow()->isVisible());
    EXPECT_FALSE(window.outputWindows().first()->isVisible());
    EXPECT_TRUE(window.close());
    EXPECT_TRUE(quit.isEmpty());
    controller.taskQueue().showOutputWindow(u"late\n"_s, u"Two"_s);
    EXPECT_EQ(window.outputWindows().size(), 1);
    window.openFiles({.paths = {folder.write(u"late.flac"_s, "x")}, .refused = {}});
    EXPECT_FALSE(window.page(u"decode"_s)->isAddingFiles());
    job->finish();
}

} // namespace nurv::test
