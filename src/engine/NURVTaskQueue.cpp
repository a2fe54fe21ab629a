// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskQueue.h"

#include "engine/EngineLog.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"
#include "platform/DesktopServices.h"
#include "platform/NotificationCenter.h"
#include "platform/SettingsStore.h"

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A limit from a settings file that somebody wrote by hand: below one it would
/// leave every job waiting for ever, without a bound it would start them all.
int usableLimit(int limit)
{
    return std::clamp(limit, 1, NURVTaskQueue::kMostThreads);
}

} // namespace

NURVTaskQueue::NURVTaskQueue(DesktopServices &services, QObject *parent)
    : QObject(parent), m_services(services),
      m_maxThreads(usableLimit(SettingsStore::instance().integer(u"maxThreads"_s)))
{
    NotificationCenter::instance().subscribe(
        QString::fromUtf16(NURVMaxThreadsChangedNotification), this,
        [this](const QVariant &limit, const QVariantMap &) { m_maxThreads = usableLimit(limit.toInt()); });
}

NURVTaskQueue::~NURVTaskQueue() = default;

void NURVTaskQueue::addTask(const std::shared_ptr<NURVTask> &task)
{
    Q_EMIT panelRequested();
    const std::scoped_lock lock(m_lock);
    m_taskArray.push_back(task);
    countChanged();
    const int row = static_cast<int>(m_panelArray.size());
    m_panelArray.push_back(task);
    m_rowOfTask.insert(task.get(), row);
    Q_EMIT rowAppended(row);
    if (!m_noSleep)
        preventSleep();
    if (m_activeTask < m_maxThreads) {
        startTask(task);
        m_lowestActivePosition = std::max(m_lowestActivePosition, row);
        ++m_activeTask;
    }
}

void NURVTaskQueue::addTasks(const std::vector<std::shared_ptr<NURVTask>> &tasks)
{
    for (const std::shared_ptr<NURVTask> &task : tasks)
        addTask(task);
}

void NURVTaskQueue::startTask(const std::shared_ptr<NURVTask> &task)
{
    task->startTask();
}

void NURVTaskQueue::taskCompleted(const std::shared_ptr<NURVTask> &task)
{
    try {
        finishTask(task);
    } catch (const std::exception &failure) {
        qCWarning(engineLog, "Exception in queue taskCompleted: %s", failure.what());
    }
    if (m_taskArray.empty() && !m_isCancellingAll)
        becomeEmpty();
    Q_EMIT taskEnded(task);
}

void NURVTaskQueue::becomeEmpty()
{
    m_activeTask = 0;
    m_lowestActivePosition = 0;
    allowSleep();
}

void NURVTaskQueue::finishTask(const std::shared_ptr<NURVTask> &task)
{
    const std::shared_ptr<NURVTaskResults> results = task->results();
    {
        const std::scoped_lock lock(m_lock);
        const auto place = std::find(m_taskArray.begin(), m_taskArray.end(), task);
        if (place == m_taskArray.end())
            return;
        // Counted down also for a job that was cancelled while it waited and so
        // was never counted as running.
        if (task->isDone())
            --m_activeTask;
        m_taskArray.erase(place);
        countChanged();
        startWaitingTasks();
        Q_EMIT scrollRequested(m_lowestActivePosition);
    }
    if (m_activeTask == 0 && !m_isCancellingAll)
        sweep();
    if (results && results->takeReport()) {
        showOutputWindow(results->results(),
                         task->title().isEmpty() ? std::nullopt : std::optional(task->title()));
    }
}

void NURVTaskQueue::startWaitingTasks()
{
    // A job that "cancel all" has yet to reach must not start a program first.
    if (m_isCancellingAll)
        return;
    for (std::size_t k = 0; k < m_taskArray.size() && m_activeTask < m_maxThreads; ++k) {
        const std::shared_ptr<NURVTask> waiting = m_taskArray[k];
        if (waiting->isActive() || waiting->isDone())
            continue;
        startTask(waiting);
        Q_EMIT panelRequested();
        m_lowestActivePosition = std::max(m_lowestActivePosition, rowOf(*waiting));
        ++m_activeTask;
    }
}

void NURVTaskQueue::sweep()
{
    std::vector<std::shared_ptr<NURVTask>> failed;
    for (const std::shared_ptr<NURVTask> &task : m_panelArray) {
        if (task->error())
            failed.push_back(task);
        else
            task->hide();
    }
    const bool anyFailed = !failed.empty();
    rebuildRows(std::move(failed));
    if (anyFailed)
        return;
    Q_EMIT panelCloseRequested();
    countChanged();
    if (m_services.hasNotificationService())
        m_services.deliverNotification(u"Nurv task(s) completed"_s, QString());
    else
        m_services.requestAttention();
}

void NURVTaskQueue::rebuildRows(std::vector<std::shared_ptr<NURVTask>> rows)
{
    m_panelArray = std::move(rows);
    m_rowOfTask.clear();
    for (std::size_t row = 0; row < m_panelArray.size(); ++row)
        m_rowOfTask.insert(m_panelArray[row].get(), static_cast<int>(row));
    Q_EMIT rowsReset();
}

void NURVTaskQueue::rowStateChanged(const NURVTask &task)
{
    if (const int row = rowOf(task); row >= 0)
        Q_EMIT rowChanged(row);
}

void NURVTaskQueue::killAllTasks()
{
    cancelFromLastToFirst();
    Q_EMIT rowsReset();
}

void NURVTaskQueue::cancelAllTasks()
{
    cancelFromLastToFirst();
}

void NURVTaskQueue::cancelFromLastToFirst()
{
    if (m_taskArray.empty())
        return;
    m_isCancellingAll = true;
    // A copy: a waiting job leaves the list while it is being cancelled.
    const std::deque<std::shared_ptr<NURVTask>> tasks = m_taskArray;
    for (auto task = tasks.rbegin(); task != tasks.rend(); ++task) {
        // What would follow a cancelled batch is not wanted either.
        if (const std::shared_ptr<NURVTaskResults> set = (*task)->results())
            set->setTaskAfterSetDone(nullptr);
        (*task)->cancelTask();
    }
    m_isCancellingAll = false;

    // Only the jobs whose programs run to their end are left, and counted.
    m_activeTask = static_cast<std::int32_t>(m_taskArray.size());
    if (m_activeTask == 0) {
        sweep();
        becomeEmpty();
    }
}

void NURVTaskQueue::removeAllErrors()
{
    std::vector<std::shared_ptr<NURVTask>> others;
    for (const std::shared_ptr<NURVTask> &task : m_panelArray) {
        if (task->error())
            task->hide();
        else
            others.push_back(task);
    }
    rebuildRows(std::move(others));
    if (m_taskArray.empty())
        Q_EMIT panelCloseRequested();
    countChanged();
}

void NURVTaskQueue::countChanged()
{
    m_services.setBadge(taskCount());
    Q_EMIT taskCountChanged(taskCount());
}

void NURVTaskQueue::preventSleep()
{
    const std::optional<std::uint32_t> assertion = m_services.createSleepAssertion(u"Nurv task running"_s);
    m_noSleep = assertion.has_value();
    if (!assertion)
        return;
    // Taken and given back at once: the flag records that this run has had its
    // step, and later jobs of the run do not repeat it.
    m_assertionID = *assertion;
    m_services.releaseSleepAssertion(m_assertionID);
}

void NURVTaskQueue::allowSleep()
{
    m_noSleep = false;
    try {
        m_services.releaseSleepAssertion(m_assertionID);
    } catch (const std::exception &failure) {
        qCWarning(engineLog, "The sleep assertion was not released: %s", failure.what());
    }
}

void NURVTaskQueue::showOutputWindow(const QString &text, const std::optional<QString> &title)
{
    Q_EMIT outputWindowRequested(text, title.value_or(u"Output"_s));
}

} // namespace nurv
