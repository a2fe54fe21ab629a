// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace nurv {

class DesktopServices;
class NURVTask;

/// The application's one job queue: runs at most `maxThreads` jobs at once, in
/// the order in which they were added, and keeps the rows of the status list.
///
///     addTask ──> taskArray (waiting + running) ──> taskCompleted ──> next waiting jobs start
///            └──> panelArray (rows) ──────────────> sweep when nothing is counted as running
///
/// It knows neither widgets nor a console: a status window, a terminal or a test
/// listens to its signals. Everything runs on the GUI thread. Listeners and the desktop
/// are told when the lock is free, in the order of what happened: they may add jobs.
class NURVTaskQueue : public QObject {
    Q_OBJECT

public:
    /// The most jobs that may run at once, whatever is asked for.
    static constexpr int kMostThreads = 256;

    /// `services` must outlive the queue. The limit is the setting "maxThreads".
    explicit NURVTaskQueue(DesktopServices &services, QObject *parent = nullptr);
    ~NURVTaskQueue() override;

    void addTask(const std::shared_ptr<NURVTask> &task);
    void addTasks(const std::vector<std::shared_ptr<NURVTask>> &tasks);
    /// Starts no further job until `release`; those that run go on.
    void hold();
    void release();
    [[nodiscard]] bool isHeld() const { return m_isHeld; }
    /// Called once by every job, after it has stopped.
    void taskCompleted(const std::shared_ptr<NURVTask> &task);

    /// How many jobs have not completed yet, waiting and running.
    [[nodiscard]] int taskCount() const { return static_cast<int>(m_taskArray.size()); }
    /// Cancels every job, from the last to the first, and starts neither a waiting
    /// job nor what would follow a batch; for the end of the application.
    void killAllTasks();
    /// The same as a user's command.
    void cancelAllTasks();
    /// Takes the rows of failed jobs out of the list.
    void removeAllErrors();

    void preventSleep();
    void allowSleep();
    /// What stands before the report of a failed job in a window of its own; nothing at first.
    void setReportHead(std::function<QString(const NURVTask &task)> head) { m_reportHead = std::move(head); }
    /// Asks for a window with the text; without a title it is called "Output".
    void showOutputWindow(const QString &text, const std::optional<QString> &title);

    /// The jobs with a row in the status list, in the order added.
    [[nodiscard]] const std::vector<std::shared_ptr<NURVTask>> &panelArray() const { return m_panelArray; }
    /// The job's row, or -1.
    [[nodiscard]] int rowOf(const NURVTask &task) const { return m_rowOfTask.value(&task, -1); }
    /// For jobs: the row of `task` has to be painted anew.
    void rowStateChanged(const NURVTask &task);

    [[nodiscard]] int activeTask() const { return m_activeTask; }
    [[nodiscard]] int maxThreads() const { return m_maxThreads; }
    [[nodiscard]] int lowestActivePosition() const { return m_lowestActivePosition; }
    [[nodiscard]] bool noSleep() const { return m_noSleep; }

Q_SIGNALS:
    /// Bring the status list to the front.
    void panelRequested();
    void panelCloseRequested();
    void rowAppended(int row);
    void rowChanged(int row);
    /// Rows have been removed; read the list anew.
    void rowsReset();
    /// The row may have been swept already.
    void scrollRequested(int row);
    void taskCountChanged(int count);
    void heldChanged(bool isHeld);
    /// A completed job, once its result set has been examined.
    void taskEnded(const std::shared_ptr<nurv::NURVTask> &task);
    /// Nothing of the job is left to do: its outcome is final. Once for each job, after
    /// `taskEnded`; the queue may be empty by then.
    void taskSettled(const std::shared_ptr<nurv::NURVTask> &task);
    void outputWindowRequested(const QString &text, const QString &title);

private:
    /// Does what changes lists and counters, and then tells of it.
    void underLock(const std::function<void()> &work);
    /// Tells at once, or when the lock is free.
    void announce(std::function<void()> announcement);
    void tellAll();
    void startTask(const std::shared_ptr<NURVTask> &task);
    void finishTask(const std::shared_ptr<NURVTask> &task);
    void becomeEmpty();
    void startWaitingTasks();
    void sweep();
    void cancelFromLastToFirst();
    void countChanged();
    /// Hides the rows of such jobs and removes them from the list.
    void takeAway(bool (*isUnwanted)(const NURVTask &task));
    void rebuildRows(std::vector<std::shared_ptr<NURVTask>> rows);

    DesktopServices &m_services;
    std::deque<std::shared_ptr<NURVTask>> m_taskArray;
    std::vector<std::shared_ptr<NURVTask>> m_panelArray;
    QHash<const NURVTask *, int> m_rowOfTask;
    std::mutex m_lock;
    std::deque<std::function<void()>> m_announcements;
    std::function<QString(const NURVTask &task)> m_reportHead;
    bool m_isLocked = false;
    bool m_isHeld = false;
    std::int32_t m_activeTask = 0;
    std::int32_t m_maxThreads = 2;
    std::int32_t m_lowestActivePosition = 0;
    std::uint32_t m_assertionID = 0;
    bool m_noSleep = false;
    bool m_isCancellingAll = false;
};

} // namespace nurv
