// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskQueue.h"

#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NotificationCenter.h"
#include "desktop/DesktopServices.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"
#include "settings/SettingsStore.h"

#include <QScopeGuard>

#include <algorithm>
#include <exception>
#include <set>
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

void NURVTaskQueue::underLock(const std::function<void()> &work)
{
    const auto tell = qScopeGuard([this] { tellAll(); });
    const std::scoped_lock lock(m_lock);
    m_isLocked = true;
    const auto unlock = qScopeGuard([this] { m_isLocked = false; });
    work();
}

void NURVTaskQueue::announce(std::function<void()> announcement)
{
    m_announcements.push_back(std::move(announcement));
    if (!m_isLocked)
        tellAll();
}

void NURVTaskQueue::tellAll()
{
    while (!m_announcements.empty()) {
        const std::function<void()> announcement = std::move(m_announcements.front());
        m_announcements.pop_front();
        // One that fails keeps the others from nothing.
        try {
            announcement();
        } catch (const std::exception &failure) {
            qCWarning(engineLog, "Exception in queue: %s", failure.what());
        }
    }
}

void NURVTaskQueue::addTask(const std::shared_ptr<NURVTask> &task)
{
    Q_ASSERT(isGuiThread());
    Q_EMIT panelRequested();
    underLock([&] {
        m_taskArray.push_back(task);
        countChanged();
        const int row = static_cast<int>(m_panelArray.size());
        m_panelArray.push_back(task);
        m_rowOfTask.insert(task.get(), row);
        announce([this, row] {
            Q_EMIT rowAppended(row);
            if (!m_noSleep)
                preventSleep();
        });
        if (m_activeTask < m_maxThreads && !m_isHeld && !m_isCancellingAll) {
            startTask(task);
            m_lowestActivePosition = std::max(m_lowestActivePosition, row);
            ++m_activeTask;
        }
    });
}

void NURVTaskQueue::hold()
{
    if (!std::exchange(m_isHeld, true))
        Q_EMIT heldChanged(true);
}

void NURVTaskQueue::release()
{
    const bool wasHeld = std::exchange(m_isHeld, false);
    underLock([this] { startWaitingTasks(); });
    if (wasHeld)
        Q_EMIT heldChanged(false);
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
    Q_ASSERT(isGuiThread());
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
    bool isKnown = false;
    underLock([&] {
        const auto place = std::find(m_taskArray.begin(), m_taskArray.end(), task);
        isKnown = place != m_taskArray.end();
        if (!isKnown)
            return;
        // Counted down also for a job that was cancelled while it waited and so
        // was never counted as running.
        if (task->isDone())
            --m_activeTask;
        m_taskArray.erase(place);
        countChanged();
        startWaitingTasks();
        announce([this, row = m_lowestActivePosition] { Q_EMIT scrollRequested(row); });
    });
    if (!isKnown)
        return;
    // While it is held, jobs may wait although none runs.
    if (m_activeTask == 0 && !m_isCancellingAll && !(m_isHeld && !m_taskArray.empty()))
        sweep();
    if (results && results->takeReport()) {
        const bool isOfOneFailure = task->error() && results->memberCount() == 1 && !results->frame();
        const QString head = isOfOneFailure && m_reportHead ? m_reportHead(*task) : QString();
        showOutputWindow(head + results->windowText(),
                         task->title().isEmpty() ? std::nullopt : std::optional(task->title()));
    }
}

void NURVTaskQueue::startWaitingTasks()
{
    // A job that "cancel all" has yet to reach must not start a program first.
    if (m_isCancellingAll || m_isHeld)
        return;
    for (std::size_t k = 0; k < m_taskArray.size() && m_activeTask < m_maxThreads; ++k) {
        const std::shared_ptr<NURVTask> waiting = m_taskArray[k];
        if (waiting->isActive() || waiting->isDone())
            continue;
        startTask(waiting);
        announce([this] { Q_EMIT panelRequested(); });
        m_lowestActivePosition = std::max(m_lowestActivePosition, rowOf(*waiting));
        ++m_activeTask;
    }
}

void NURVTaskQueue::sweep()
{
    takeAway([](const NURVTask &task) { return !task.error(); });
    if (std::any_of(m_panelArray.begin(), m_panelArray.end(), [](const auto &task) { return task->error(); }))
        return;
    Q_EMIT panelCloseRequested();
    countChanged();
    if (m_services.hasNotificationService())
        m_services.deliverNotification(u"Nurv task(s) completed"_s, QString());
    else
        m_services.requestAttention();
}

void NURVTaskQueue::takeAway(bool (*isUnwanted)(const NURVTask &task))
{
    // A copy: listeners, which are told of each row while it has its number, may add jobs.
    const std::vector<std::shared_ptr<NURVTask>> rows = m_panelArray;
    std::set<const NURVTask *> unwanted;
    for (const std::shared_ptr<NURVTask> &task : rows) {
        if (!isUnwanted(*task))
            continue;
        task->hide();
        unwanted.insert(task.get());
    }
    std::vector<std::shared_ptr<NURVTask>> others;
    for (const std::shared_ptr<NURVTask> &task : m_panelArray) {
        if (!unwanted.contains(task.get()))
            others.push_back(task);
    }
    rebuildRows(std::move(others));
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
    Q_ASSERT(isGuiThread());
    if (const int row = rowOf(task); row >= 0)
        announce([this, row] { Q_EMIT rowChanged(row); });
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
    Q_ASSERT(isGuiThread());
    if (m_taskArray.empty())
        return;
    // A copy: a waiting job leaves the list while it is being cancelled.
    const std::deque<std::shared_ptr<NURVTask>> tasks = m_taskArray;
    {
        m_isCancellingAll = true;
        const auto end = qScopeGuard([this] { m_isCancellingAll = false; });
        for (auto task = tasks.rbegin(); task != tasks.rend(); ++task) {
            // What would follow a cancelled batch is not wanted either.
            if (const std::shared_ptr<NURVTaskResults> set = (*task)->results())
                set->setTaskAfterSetDone(nullptr);
            (*task)->cancelTask();
        }
    }
    // The jobs whose programs run to their end are left, and what a listener has added meanwhile waits.
    m_activeTask = static_cast<std::int32_t>(
        std::count_if(m_taskArray.begin(), m_taskArray.end(), [](const auto &task) { return task->isActive(); }));
    underLock([this] { startWaitingTasks(); });
    if (m_activeTask == 0) {
        sweep();
        becomeEmpty();
    }
}

void NURVTaskQueue::removeAllErrors()
{
    Q_ASSERT(isGuiThread());
    takeAway([](const NURVTask &task) { return task.error(); });
    if (m_taskArray.empty())
        Q_EMIT panelCloseRequested();
    countChanged();
}

void NURVTaskQueue::countChanged()
{
    announce([this, count = taskCount()] { Q_EMIT taskCountChanged(count); });
    announce([this, count = taskCount()] { m_services.setBadge(count); });
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
