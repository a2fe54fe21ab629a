// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainWindow.h"

#include "app/BaseTab.h"
#include "app/BatchWatch.h"
#include "app/FileArrivals.h"
#include "app/NURVController.h"
#include "app/ProblemLine.h"
#include "app/UnfinishedFiles.h"
#include "app/UserPrompts.h"
#include "base/GuiThread.h"
#include "base/WorkerThreads.h"
#include "desktop/DesktopServices.h"
#include "engine/NURVTaskQueue.h"
#include "preferences/PreferencesController.h"
#include "settings/SettingsStore.h"
#include "tagging/TagsTab.h"
#include "ui/ApplicationIcon.h"
#include "ui/FileListView.h"
#include "ui/GivenFiles.h"
#include "ui/OutputWindow.h"
#include "ui/Pages.h"
#include "ui/pages/AboutPage.h"
#include "ui/pages/TabPage.h"
#include "ui/PreferencesWindow.h"
#include "ui/ProgressStrip.h"
#include "ui/RecentFolders.h"
#include "ui/StatusWindow.h"
#include "ui/TrackNameWindow.h"
#include "ui/WindowPlace.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLocale>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr QSize kFirstSize{880, 700};
constexpr int kCascade = 28;
constexpr qsizetype kMostWindowsAtOnce = 20;
const QString kGeometryKey = u"window/geometry"_s;
const QString kPageKey = u"window/page"_s;

} // namespace

MainWindow::MainWindow(NURVController &controller, QWidget *parent)
    : QMainWindow(parent), m_controller(controller), m_preferences(std::make_unique<PreferencesController>()),
      m_tabView(new QTabWidget(this)), m_batch(new BatchWatch(controller.taskQueue(), controller.desktop(), this)),
      m_unfinished(new UnfinishedFiles(controller, this)), m_recentFolders(new RecentFolders(this)),
      m_statusWindow(new StatusWindow(controller.taskQueue(), *m_batch, *m_unfinished, this)),
      m_trackNameWindow(new TrackNameWindow(controller.trackNameInputController(), this))
{
    setObjectName(u"mainWindow"_s);
    setWindowTitle(u"Nurv Audio Workbench"_s);
    setWindowIcon(applicationIcon());
    setAcceptDrops(true);
    m_tabView->setObjectName(u"tabView"_s);
    m_tabView->setAccessibleName(tr("Tools"));
    m_tabView->setDocumentMode(true);
    m_tabView->tabBar()->setObjectName(u"tabBar"_s);
    m_tabView->tabBar()->setAccessibleName(tr("Tools"));
    createPages();
    layOut();
    createMenus();
    connect(m_tabView, &QTabWidget::currentChanged, this, &MainWindow::pageChosen);
    connect(&controller, &NURVController::pageSelected, this, &MainWindow::showPage);
    connect(&controller, &NURVController::preferencePanelRequested, this, &MainWindow::showPreferences);
    connect(&controller.taskQueue(), &NURVTaskQueue::outputWindowRequested, this, &MainWindow::showReport);
    controller.taskQueue().setReportHead(reportHead);
    connect(&controller.arrivals(), &FileArrivals::delivered, this,
            [this](const QString &, const FileIntake &found) { m_recentFolders->note(found); });
    connect(&m_reportTimer, &QTimer::timeout, this, &MainWindow::showWaitingReport);
    connect(&controller, &NURVController::executing, m_statusWindow, &StatusWindow::expectBatch);
    connect(m_progressStrip, &ProgressStrip::clicked, m_statusWindow, &StatusWindow::bringToFront);
    connect(m_progressStrip, &ProgressStrip::folderRequested, this, &MainWindow::openFolder);
    // As on most desktops; Qt has it on some only.
    connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this, [this] {
        menuBar()->setFocus(Qt::ShortcutFocusReason);
        menuBar()->setActiveAction(menuBar()->actions().first());
    });
    restoreState();
}

MainWindow::~MainWindow()
{
    for (const QPointer<OutputWindow> &window : std::as_const(m_outputWindows))
        delete window.data();
    // Its controller goes before the children of this window do.
    delete m_preferencesWindow;
}

void MainWindow::createPages()
{
    for (const Tool &tool : m_controller.tools()) {
        TabPage *const page = makePage(m_controller.tab(tool.label));
        if (page == nullptr)
            continue;
        m_tabView->addTab(page, QCoreApplication::translate("Tool", tool.title));
        m_labels.append(tool.label);
        m_pages.insert(tool.label, page);
        page->offerRecentFolders(*m_recentFolders);
        connect(page, &TabPage::readinessChanged, this, &MainWindow::showReadiness);
        connect(&page->tab(), &BaseTab::fileNamesChanged, this, &MainWindow::showEditing);
        connect(&page->tab(), &BaseTab::selectedRowsChanged, this, &MainWindow::showEditing);
    }
    TabPage::alignOptions(m_pages.values());
    m_tabView->addTab(new AboutPage, tr("About"));
    m_labels.append(NURVController::kAboutLabel);
}

void MainWindow::layOut()
{
    // Behind the pages, also for the keyboard.
    m_progressStrip = new ProgressStrip(*m_batch, this);
    auto *const all = new QWidget(this);
    auto *const column = new QVBoxLayout(all);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_tabView, 1);
    column->addWidget(m_progressStrip);
    setCentralWidget(all);
}

QAction *MainWindow::addAction(QMenu *menu, const QString &title, const QString &objectName,
                               const QKeySequence &shortcut, const std::function<void()> &action)
{
    auto *const entry = new QAction(title, this);
    entry->setObjectName(objectName);
    entry->setShortcut(shortcut);
    connect(entry, &QAction::triggered, this, action);
    menu->addAction(entry);
    return entry;
}

void MainWindow::createMenus()
{
    createFileMenu();
    createEditMenu();
    createJobsMenu();
    createGoMenu();
    createHelpMenu();
}

void MainWindow::createFileMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&File"));
    m_addFilesAction = addAction(menu, tr("&Add Files…"), u"addFilesAction"_s, QKeySequence::Open, [this] {
        if (TabPage *const page = currentPage())
            page->chooseFiles();
    });
    m_addFolderAction = addAction(menu, tr("Add &Folder…"), u"addFolderAction"_s,
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), [this] {
        if (TabPage *const page = currentPage())
            page->chooseFolder();
    });
    m_cueSheetAction = addAction(menu, tr("&Load Tags From CUE Sheet..."), u"loadCueSheetAction"_s, {}, [this] {
        if (auto *const tab = qobject_cast<TagsTab *>(m_controller.tab(u"Tags"_s)))
            tab->loadTagsFromCueSheet();
    });
    menu->addSeparator();
    QAction *const quit =
        addAction(menu, tr("&Quit"), u"quitAction"_s, QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { requestQuit(); });
    quit->setMenuRole(QAction::QuitRole);
}

void MainWindow::createEditMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Edit"));
    m_undoAction = addAction(menu, tr("&Undo"), u"undoAction"_s, QKeySequence::Undo, [this] {
        if (const TabPage *const page = currentPage())
            page->tab().undoRemoval();
    });
    menu->addSeparator();
    m_selectAllAction = addAction(menu, tr("Select &All"), u"selectAllAction"_s, QKeySequence::SelectAll, [this] {
        if (const TabPage *const page = currentPage())
            page->fileList()->selectAll();
    });
    m_removeAction = addAction(menu, tr("&Remove From List"), u"removeAction"_s, {}, [this] {
        if (const TabPage *const page = currentPage())
            page->fileList()->deleteSelectedRows();
    });
    menu->addSeparator();
    // Not every desktop has one.
    const QList<QKeySequence> usual = QKeySequence::keyBindings(QKeySequence::Preferences);
    const QKeySequence shortcut = usual.isEmpty() ? QKeySequence(Qt::CTRL | Qt::Key_Comma) : usual.first();
    QAction *const preferences = addAction(menu, tr("&Preferences…"), u"preferencesAction"_s, shortcut,
                                           [this] { m_controller.showPreferencePanel(); });
    preferences->setMenuRole(QAction::PreferencesRole);
}

void MainWindow::createJobsMenu()
{
    NURVTaskQueue &queue = m_controller.taskQueue();
    QMenu *const menu = menuBar()->addMenu(tr("&Jobs"));
    m_executeAction =
        addAction(menu, tr("&Execute"), u"executeAction"_s, QKeySequence(Qt::CTRL | Qt::Key_Return), [this] {
            if (TabPage *const page = currentPage())
                page->execute();
        });
    menu->addSeparator();
    addAction(menu, tr("&Show Status Window"), u"showStatusAction"_s, QKeySequence(Qt::CTRL | Qt::Key_J),
              [this] { m_statusWindow->bringToFront(); });
    m_cancelAllAction = addAction(menu, tr("&Cancel All"), u"cancelAllAction"_s,
                                  QKeySequence(Qt::CTRL | Qt::Key_Period), [&queue] { queue.cancelAllTasks(); });
    m_pauseAction = addAction(menu, tr("&Pause"), u"pauseAction"_s, {},
                              [this, &queue] { m_pauseAction->isChecked() ? queue.hold() : queue.release(); });
    m_pauseAction->setCheckable(true);
    m_putBackAction = addAction(menu, tr("Put Failed and Canceled Files &Back"), u"putBackAction"_s, {},
                                [this] { m_unfinished->putBack(); });
    m_removeErrorsAction = addAction(menu, tr("&Remove Errors"), u"removeErrorsAction"_s,
                                     QKeySequence(Qt::CTRL | Qt::Key_E), [&queue] { queue.removeAllErrors(); });
    m_cancelAllAction->setEnabled(false);
    m_removeErrorsAction->setEnabled(false);
    connect(m_statusWindow, &StatusWindow::hasErrorsChanged, m_removeErrorsAction, &QAction::setEnabled);
    m_putBackAction->setEnabled(false);
    connect(m_unfinished, &UnfinishedFiles::changed, m_putBackAction,
            [this] { m_putBackAction->setEnabled(m_unfinished->count() > 0); });
    connect(&queue, &NURVTaskQueue::heldChanged, this, &MainWindow::showPause);
    connect(&queue, &NURVTaskQueue::taskCountChanged, this, [this, &queue](int count) {
        m_cancelAllAction->setEnabled(count > 0);
        // The next batch starts by itself.
        if (count == 0)
            queue.release();
        showPause();
    });
    showPause();
}

void MainWindow::createGoMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Go"));
    for (qsizetype index = 0; index < m_labels.size(); ++index) {
        const QString label = m_labels.at(index);
        const QKeySequence shortcut = index < 9 ? QKeySequence(u"Ctrl+%1"_s.arg(index + 1)) : QKeySequence();
        addAction(menu, m_tabView->tabText(static_cast<int>(index)), u"go.%1"_s.arg(label), shortcut,
                  [this, label] { m_controller.selectTab(label); });
    }
}

void MainWindow::createHelpMenu()
{
    QMenu *const menu = menuBar()->addMenu(tr("&Help"));
    QAction *const about = addAction(menu, tr("&About Nurv Audio Workbench"), u"aboutAction"_s, {},
                                     [this] { m_controller.selectTab(NURVController::kAboutLabel); });
    about->setMenuRole(QAction::AboutRole);
}

TabPage *MainWindow::currentPage() const
{
    return qobject_cast<TabPage *>(m_tabView->currentWidget());
}

void MainWindow::pageChosen(int index)
{
    if (index >= 0 && index < m_labels.size())
        m_controller.selectTab(m_labels.at(index));
    showReadiness();
}

void MainWindow::showPage(const QString &label)
{
    if (const qsizetype index = m_labels.indexOf(label); index >= 0)
        m_tabView->setCurrentIndex(static_cast<int>(index));
}

void MainWindow::showPreferences()
{
    if (m_preferencesWindow == nullptr)
        m_preferencesWindow = new PreferencesWindow(*m_preferences, this);
    m_preferencesWindow->bringToFront();
}

void MainWindow::showReadiness()
{
    const TabPage *const page = currentPage();
    m_addFilesAction->setEnabled(page != nullptr);
    m_addFolderAction->setEnabled(page != nullptr);
    m_cueSheetAction->setEnabled(m_controller.selectedTabViewItem() == u"Tags");
    m_executeAction->setEnabled(page != nullptr && page->isReady());
    showEditing();
}

void MainWindow::showEditing()
{
    const TabPage *const page = currentPage();
    const qsizetype removed = page != nullptr ? page->tab().removedCount() : 0;
    m_undoAction->setEnabled(removed > 0);
    m_undoAction->setText(removed == 0   ? tr("&Undo")
                          : removed == 1 ? tr("&Undo: Put 1 File Back")
                                         : tr("&Undo: Put %1 Files Back").arg(QLocale().toString(removed)));
    m_selectAllAction->setEnabled(page != nullptr && !page->tab().fileNames().isEmpty());
    m_removeAction->setEnabled(page != nullptr && page->tab().usesTableViewContextMenu()
                               && !page->tab().selectedRows().isEmpty());
}

void MainWindow::showPause()
{
    const NURVTaskQueue &queue = m_controller.taskQueue();
    m_pauseAction->setChecked(queue.isHeld());
    m_pauseAction->setEnabled(queue.isHeld() || queue.taskCount() > 0);
}

void MainWindow::openFolder(const QString &path)
{
    if (!QFileInfo(path).isDir()) {
        m_controller.prompts().ask({.title = tr("The folder is not there"), .message = path, .buttons = {tr("OK")}});
        return;
    }
    if (!m_controller.desktop().openFolder(path))
        m_controller.prompts().ask(
            {.title = tr("No program shows the folder"), .message = path, .buttons = {tr("OK")}});
}

void MainWindow::openFiles(const GivenFiles &files)
{
    if (m_isClosing)
        return;
    m_controller.arrivals().receive({.label = m_controller.selectedTabViewItem(),
                                     .door = Door::Application,
                                     .paths = files.paths,
                                     .refusedNames = files.refused});
}

void MainWindow::showReport(const QString &text, const QString &title)
{
    m_outputWindows.removeAll(nullptr);
    // Thousands of windows take their time: from here on one comes at each turn of the event loop.
    if (m_outputWindows.size() >= kMostWindowsAtOnce || !m_waitingReports.empty()) {
        m_waitingReports.emplace_back(text, title);
        m_reportTimer.start();
        return;
    }
    openOutputWindow(text, title);
}

void MainWindow::showWaitingReport()
{
    if (m_waitingReports.empty() || m_isClosing) {
        m_reportTimer.stop();
        return;
    }
    const auto [text, title] = std::move(m_waitingReports.front());
    m_waitingReports.pop_front();
    openOutputWindow(text, title);
}

void MainWindow::openOutputWindow(const QString &text, const QString &title)
{
    if (m_isClosing)
        return;
    auto *const window = new OutputWindow(m_controller.prompts());
    window->setWindowIcon(windowIcon());
    window->setTextValue(text, title);
    m_outputWindows.append(window);
    // Each window stands a little below and right of the one before, and starts
    // again at the corner when it would leave the screen.
    const QRect desk = screen()->availableGeometry();
    QPoint place = m_outputWindowTopLeft.isNull() ? geometry().topLeft() : m_outputWindowTopLeft;
    place += QPoint(kCascade, kCascade);
    if (m_outputWindows.size() == 1 && window->hasKeptPlace())
        place = window->pos();
    if (!desk.contains(QRect(place, window->size())))
        place = desk.topLeft() + QPoint(kCascade, kCascade);
    m_outputWindowTopLeft = place;
    window->move(place);
    window->show();
}

QList<OutputWindow *> MainWindow::outputWindows() const
{
    QList<OutputWindow *> windows;
    for (const QPointer<OutputWindow> &window : m_outputWindows) {
        if (window)
            windows.append(window);
    }
    return windows;
}

void MainWindow::bringToFront()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::requestQuit()
{
    if (m_isClosing || !m_controller.applicationShouldTerminate())
        return;
    m_isClosing = true;
    Q_EMIT quitConfirmed();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // The closed window takes the application with it, so it stays when the
    // user keeps the jobs.
    if (m_isClosing || (m_controller.windowShouldClose() && m_controller.applicationShouldTerminate())) {
        event->accept();
        if (!std::exchange(m_isClosing, true))
            Q_EMIT quitConfirmed();
        return;
    }
    event->ignore();
}

void MainWindow::prepareToQuit()
{
    m_isClosing = true;
    m_batch->stop();
    saveState();
    for (OutputWindow *const output : outputWindows())
        output->hide();
    m_statusWindow->hide();
    m_trackNameWindow->hide();
    if (m_preferencesWindow != nullptr)
        m_preferencesWindow->hide();
    hide();
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    // Not to the tab bar, where the keys would leave the page.
    if (TabPage *const page = currentPage(); page != nullptr && !std::exchange(m_hasShown, true))
        page->fileList()->setFocus();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!hasLocalFiles(event->mimeData()))
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const GivenFiles files = localFiles(event->mimeData());
    if (files.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    openFiles(files);
}

void MainWindow::saveState() const
{
    SettingsStore &settings = SettingsStore::instance();
    windowPlace::keep(*this, kGeometryKey);
    settings.setValue(kPageKey, m_labels.value(m_tabView->currentIndex()));
    m_statusWindow->saveState();
    m_trackNameWindow->saveState();
    if (m_preferencesWindow != nullptr)
        m_preferencesWindow->saveState();
    if (const QList<OutputWindow *> outputs = outputWindows(); !outputs.isEmpty())
        outputs.last()->saveState();
    // A tab stores its options when it shows those that matter.
    for (const TabPage *const page : m_pages)
        page->tab().displayRelevantOptions();
    settings.sync();
}

void MainWindow::restoreState()
{
    windowPlace::restore(*this, kGeometryKey, kFirstSize);
    const QString label = SettingsStore::instance().string(kPageKey);
    m_controller.selectTab(m_labels.contains(label) ? label : m_labels.first());
    showPage(m_controller.selectedTabViewItem());
    showReadiness();
}

} // namespace nurv
