// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVTaskResults.h"

#include "engine/NURVTask.h"
#include "engine/ReportFrame.h"

#include <utility>

namespace nurv {

NURVTaskResults::NURVTaskResults() = default;
NURVTaskResults::~NURVTaskResults() = default;

int NURVTaskResults::slotOf(const NURVTask &task) const
{
    const auto slot = m_slotOfTask.find(task.flags().get());
    return slot == m_slotOfTask.end() ? -1 : slot->second;
}

void NURVTaskResults::addTaskInSet(const NURVTask &task)
{
    const std::scoped_lock lock(m_lock);
    const int place = static_cast<int>(m_tasksInSet.size());
    m_tasksInSet.push_back(task.flags());
    const int slot = m_slotOfTask.try_emplace(task.flags().get(), place).first->second;
    m_resultsBySlot[slot] = QString();
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

void NURVTaskResults::setFrame(std::shared_ptr<ReportFrame> frame)
{
    const std::scoped_lock lock(m_lock);
    m_frame = std::move(frame);
}

std::shared_ptr<ReportFrame> NURVTaskResults::frame() const
{
    const std::scoped_lock lock(m_lock);
    return m_frame;
}

void NURVTaskResults::noteStop(const NURVTask &task) const
{
    const std::shared_ptr<ReportFrame> around = frame();
    if (const int place = placeOf(task); around && place >= 0)
        around->addMember(place, task);
}

QString NURVTaskResults::windowText() const
{
    const std::shared_ptr<ReportFrame> around = frame();
    return around ? around->head() + results() + around->foot() : results();
}

int NURVTaskResults::placeOf(const NURVTask &task) const
{
    const std::scoped_lock lock(m_lock);
    return slotOf(task);
}

QString NURVTaskResults::results(const NURVTask &task) const
{
    const std::scoped_lock lock(m_lock);
    const auto slot = m_resultsBySlot.find(slotOf(task));
    return slot == m_resultsBySlot.end() ? QString() : slot->second;
}

bool NURVTaskResults::allDoneLocked() const
{
    while (m_firstNotDone < m_tasksInSet.size() && m_tasksInSet[m_firstNotDone]->done)
        ++m_firstNotDone;
    return m_firstNotDone == m_tasksInSet.size();
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

bool NURVTaskResults::takeReport()
{
    const std::scoped_lock lock(m_lock);
    return m_taskSetDone && !std::exchange(m_isReportTaken, true);
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
