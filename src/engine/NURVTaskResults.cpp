// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskResults.h"

#include "engine/NURVTask.h"

#include <algorithm>
#include <utility>

namespace nurv {

namespace {

bool isSameTask(const std::weak_ptr<const TaskFlags> &a, const std::weak_ptr<const TaskFlags> &b)
{
    return !a.owner_before(b) && !b.owner_before(a);
}

} // namespace

NURVTaskResults::NURVTaskResults() = default;
NURVTaskResults::~NURVTaskResults() = default;

int NURVTaskResults::slotOf(const NURVTask &task) const
{
    const std::weak_ptr<const TaskFlags> flags = task.flags();
    for (std::size_t i = 0; i < m_tasksInSet.size(); ++i) {
        if (isSameTask(m_tasksInSet[i], flags))
            return static_cast<int>(i);
    }
    return -1;
}

void NURVTaskResults::addTaskInSet(const NURVTask &task)
{
    const std::scoped_lock lock(m_lock);
    m_tasksInSet.push_back(task.flags());
    m_resultsBySlot[slotOf(task)] = QString();
}

int NURVTaskResults::memberCount() const
{
    const std::scoped_lock lock(m_lock);
    return static_cast<int>(m_tasksInSet.size());
}

void NURVTaskResults::appendResults(const QString &text, const NURVTask &task)
{
    const std::scoped_lock lock(m_lock);
    if (const int slot = slotOf(task); slot >= 0)
        m_resultsBySlot[slot] += text;
}

void NURVTaskResults::setResults(const QString &text, const NURVTask &task)
{
    const std::scoped_lock lock(m_lock);
    if (const int slot = slotOf(task); slot >= 0)
        m_resultsBySlot[slot] = text;
}

void NURVTaskResults::appendResults(const QString &text)
{
    const std::scoped_lock lock(m_lock);
    if (const auto slot = m_resultsBySlot.find(0); slot != m_resultsBySlot.end())
        slot->second += text;
}

void NURVTaskResults::setResults(const QString &text)
{
    const std::scoped_lock lock(m_lock);
    if (const auto slot = m_resultsBySlot.find(0); slot != m_resultsBySlot.end())
        slot->second = text;
}

QString NURVTaskResults::results() const
{
    const std::scoped_lock lock(m_lock);
    QString joined;
    for (const auto &[slot, text] : m_resultsBySlot) {
        joined += text;
        joined += QLatin1Char('\n');
    }
    return joined;
}

QString NURVTaskResults::results(const NURVTask &task) const
{
    const std::scoped_lock lock(m_lock);
    const auto slot = m_resultsBySlot.find(slotOf(task));
    return slot == m_resultsBySlot.end() ? QString() : slot->second;
}

bool NURVTaskResults::allDoneLocked() const
{
    return std::all_of(m_tasksInSet.begin(), m_tasksInSet.end(), [](const auto &member) {
        const std::shared_ptr<const TaskFlags> flags = member.lock();
        return !flags || flags->done;
    });
}

bool NURVTaskResults::allTasksDone() const
{
    const std::scoped_lock lock(m_lock);
    return allDoneLocked();
}

bool NURVTaskResults::taskSetDone() const
{
    const std::scoped_lock lock(m_lock);
    return m_taskSetDone;
}

void NURVTaskResults::setTaskSetDone(bool done)
{
    const std::scoped_lock lock(m_lock);
    m_taskSetDone = done;
}

std::shared_ptr<NURVTask> NURVTaskResults::taskAfterSetDone() const
{
    const std::scoped_lock lock(m_lock);
    return m_taskAfterSetDone;
}

void NURVTaskResults::setTaskAfterSetDone(std::shared_ptr<NURVTask> task)
{
    const std::scoped_lock lock(m_lock);
    m_taskAfterSetDone = std::move(task);
}

std::shared_ptr<NURVTask> NURVTaskResults::finishIfAllDone()
{
    const std::scoped_lock lock(m_lock);
    if (!allDoneLocked())
        return nullptr;
    m_taskSetDone = true;
    return std::exchange(m_followUpReleased, true) ? nullptr : m_taskAfterSetDone;
}

} // namespace nurv
