// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <utility>

class QAction;
class QMenu;
class QTabWidget;

namespace nurv {

class BatchWatch;
struct GivenFiles;
class NURVController;
class OutputWindow;
class PreferencesController;
class PreferencesWindow;
class ProgressStrip;
class RecentFolders;
class StatusWindow;
class TabPage;
class TrackNameWindow;
class UnfinishedFiles;

/// The main window: one page per tool that is there and the about page, the
/// menus, and the windows that the queue asks for.
///
/// Closing it asks the controller; when the user agrees it emits
/// `quitConfirmed`, and whoever owns the application ends it.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    /// The controller must outlive the window; its tabs must be there already.
    explicit MainWindow(NURVController &controller, QWidget *parent = nullptr);
    ~MainWindow() override;

    [[nodiscard]] TabPage *page(const QString &label) const { return m_pages.value(label); }
    [[nodiscard]] QTabWidget *tabView() const { return m_tabView; }
    /// Null until it was asked for.
    [[nodiscard]] PreferencesWindow *preferencesWindow() const { return m_preferencesWindow; }
    [[nodiscard]] StatusWindow *statusWindow() const { return m_statusWindow; }
    [[nodiscard]] ProgressStrip *progressStrip() const { return m_progressStrip; }
    [[nodiscard]] BatchWatch &batch() const { return *m_batch; }
    [[nodiscard]] UnfinishedFiles &unfinishedFiles() const { return *m_unfinished; }
    [[nodiscard]] TrackNameWindow *trackNameWindow() const { return m_trackNameWindow; }
    /// The output windows that are open, in the order in which they opened.
    [[nodiscard]] QList<OutputWindow *> outputWindows() const;

    /// Files that arrive with the application, and the names that were refused
    /// already. Looks into folders on another thread and returns at once.
    void openFiles(const GivenFiles &files);
    /// Shows the window in front of others.
    void bringToFront();
    /// Asks whether the application may quit, and emits `quitConfirmed` if so.
    void requestQuit();
    /// Keeps places, sizes, page and options for the next start.
    void saveState() const;
    /// The application ends, whatever the user says: keeps the state, hides every
    /// window and asks nothing any more.
    void prepareToQuit();

Q_SIGNALS:
    /// The user wants to quit and nothing speaks against it.
    void quitConfirmed();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void createPages();
    void layOut();
    void createMenus();
    void createFileMenu();
    void createEditMenu();
    void createJobsMenu();
    void createGoMenu();
    void createHelpMenu();
    QAction *addAction(QMenu *menu, const QString &title, const QString &objectName, const QKeySequence &shortcut,
                       const std::function<void()> &action);
    void restoreState();
    void showPage(const QString &label);
    void pageChosen(int index);
    void showPreferences();
    void showReadiness();
    /// What of the current list can be edited.
    void showEditing();
    void showPause();
    void showReport(const QString &text, const QString &title);
    void showWaitingReport();
    void openOutputWindow(const QString &text, const QString &title);
    void openFolder(const QString &path);
    [[nodiscard]] TabPage *currentPage() const;

    NURVController &m_controller;
    std::unique_ptr<PreferencesController> m_preferences; ///< before its window
    PreferencesWindow *m_preferencesWindow = nullptr;
    QTabWidget *m_tabView = nullptr;
    BatchWatch *m_batch = nullptr;
    UnfinishedFiles *m_unfinished = nullptr;
    RecentFolders *m_recentFolders = nullptr;
    ProgressStrip *m_progressStrip = nullptr;
    StatusWindow *m_statusWindow = nullptr;
    TrackNameWindow *m_trackNameWindow = nullptr;
    QHash<QString, TabPage *> m_pages;
    QStringList m_labels; ///< of the pages shown, in their order
    QAction *m_addFilesAction = nullptr;
    QAction *m_addFolderAction = nullptr;
    QAction *m_cueSheetAction = nullptr;
    QAction *m_undoAction = nullptr;
    QAction *m_selectAllAction = nullptr;
    QAction *m_removeAction = nullptr;
    QAction *m_executeAction = nullptr;
    QAction *m_pauseAction = nullptr;
    QAction *m_putBackAction = nullptr;
    QAction *m_cancelAllAction = nullptr;
    QAction *m_removeErrorsAction = nullptr;
    QList<QPointer<OutputWindow>> m_outputWindows;
    std::deque<std::pair<QString, QString>> m_waitingReports; ///< texts and titles
    QTimer m_reportTimer;
    QPoint m_outputWindowTopLeft;
    bool m_hasShown = false;
    bool m_isClosing = false;
};

} // namespace nurv
