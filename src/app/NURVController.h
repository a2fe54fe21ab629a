// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/FileIntake.h"
#include "app/Tool.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace nurv {

class BaseTab;
class DesktopServices;
class FileArrivals;
class NURVTaskQueue;
class TrackNameInputController;
class UserPrompts;

/// How a page tells its files.
enum class FileRule {
    ByContents,  ///< by what they hold where the extension does not decide
    ByExtension, ///< by one of its extensions; by the contents only whether an MPEG-4 file is Apple Lossless
    ByExtensionAndAppleLossless, ///< the same on every page that takes Apple Lossless at all
};

/// The application's main controller: registers the settings, owns the job
/// queue, knows the tabs by the labels of their pages, routes incoming files and
/// guards quitting. Knows no widget: a window shows what it says and reports the
/// user's choice of page. Lives on the GUI thread.
class NURVController : public QObject {
    Q_OBJECT

public:
    /// The label of the page that is no tool.
    static const QString kAboutLabel;

    /// Registers the default of every setting, those of the tools and those of all. Before anything reads one.
    static void registerDefaults(const std::vector<Tool> &tools);

    /// `tools` in the order of their pages. All must outlive the controller.
    NURVController(UserPrompts &prompts, DesktopServices &services, const std::vector<Tool> &tools);
    ~NURVController() override;

    [[nodiscard]] NURVTaskQueue &taskQueue() const { return *m_taskQueue; }
    [[nodiscard]] UserPrompts &prompts() const { return m_prompts; }
    [[nodiscard]] DesktopServices &desktop() const { return m_desktop; }
    /// The track-names window, which the tools share.
    [[nodiscard]] TrackNameInputController &trackNameInputController() const { return *m_trackNameInputController; }

    [[nodiscard]] const std::vector<Tool> &tools() const { return m_tools; }
    /// All page labels in the order of the pages, also of tools that are not there.
    [[nodiscard]] QStringList pageLabels() const;
    /// The tab of the page, or nothing.
    [[nodiscard]] BaseTab *tab(const QString &label) const { return m_tabMap.value(label); }
    void registerTab(const QString &label, BaseTab &tab) { m_tabMap.insert(label, &tab); }
    void unregisterTab(const QString &label) { m_tabMap.remove(label); }

    [[nodiscard]] const QString &selectedTabViewItem() const { return m_selectedLabel; }
    /// After the tabs have been made: lets the tab of the selected page show its
    /// relevant options.
    void applicationDidFinishLaunching() { didSelectTabViewItem(); }
    /// Selects a page and lets its tab show its relevant options. A page of a tool
    /// that is not there cannot be selected.
    void selectTab(const QString &label);
    /// The same of any page, also of one without a tool.
    void showPage(const QString &label);
    /// Selects the page with that index in `pageLabels`.
    void selectTab(int index);

    /// Whoever has the preferences window shows it.
    void showPreferencePanel() { Q_EMIT preferencePanelRequested(); }

    /// The upper-case extensions that the page takes; empty: it takes any file.
    [[nodiscard]] QStringList extensions(const QString &label) const;
    /// The same with those that it takes only where the file holds Apple Lossless.
    [[nodiscard]] QStringList offeredExtensions(const QString &label) const;
    /// The page for files that arrive before the user has chosen one: the one that shows when it can handle any of
    /// them, else the first that can. Folders and links count for nothing. Reads a few headers.
    [[nodiscard]] QString pageFor(const QStringList &paths) const;
    /// Whether the page can handle the file. Any thread; may read the file's header.
    [[nodiscard]] bool isValidFile(const QString &label, const QString &path) const;
    /// What the page makes of the file. Any thread; may read the file's header, once.
    [[nodiscard]] FileVerdict look(const QString &label, const QString &path, FileRule rule) const;

    /// The way in for files.
    [[nodiscard]] FileArrivals &arrivals() const { return *m_arrivals; }
    /// Files that arrive with the application, for the page that shows. Blocks while it searches folders.
    void openFiles(const QStringList &paths);
    void addFiles(const QStringList &paths) { openFiles(paths); }

    /// Lets the tab execute. Files that arrive before it has returned join their
    /// lists then: the tab walks its list, and clears it, while it asks the user.
    /// False when it threw: the reason has been shown, and lists may change again.
    [[nodiscard]] bool execute(BaseTab &tab);
    /// The tab that executes, the innermost one; null when none does.
    [[nodiscard]] const BaseTab *executingTab() const { return m_executingTab; }
    /// Runs `change` at once, or after the tab that executes. GUI thread.
    void whenListsMayChange(const std::function<void()> &change);
    /// Whether searches of folders must give up. Any thread.
    [[nodiscard]] bool mustStopSearching() const { return m_mustStopSearching; }

    /// Asks when jobs are queued. True: the application may quit.
    [[nodiscard]] bool applicationShouldTerminate();
    /// Asks whether to quit. True: the main window may close.
    [[nodiscard]] bool windowShouldClose();
    /// Cancels every job, ends the searches of folders and lets the machine sleep.
    /// The first step of `shutDown`.
    void applicationWillTerminate();

    /// "Nurv Audio Workbench <version>" and "(Build <build>)" for the about page.
    [[nodiscard]] static QString titleText();
    [[nodiscard]] static QString buildText();

Q_SIGNALS:
    void pageSelected(const QString &label);
    /// A tab is about to execute.
    void executing();
    void preferencePanelRequested();

private:
    /// Null for a page that is no tool.
    [[nodiscard]] const Tool *tool(const QString &label) const;
    void didSelectTabViewItem();

    /// False when `action` threw: the reason has been shown.
    [[nodiscard]] bool runAndTell(const std::function<void()> &action);

    UserPrompts &m_prompts;
    DesktopServices &m_desktop;
    std::unique_ptr<TrackNameInputController> m_trackNameInputController;
    std::unique_ptr<NURVTaskQueue> m_taskQueue;
    QMap<QString, BaseTab *> m_tabMap;
    const std::vector<Tool> &m_tools; ///< read on any thread
    std::unique_ptr<FileArrivals> m_arrivals;
    QString m_selectedLabel;
    int m_executions = 0;
    const BaseTab *m_executingTab = nullptr;
    QList<std::function<void()>> m_waitingChanges;
    std::atomic<bool> m_mustStopSearching = false;
};

} // namespace nurv
