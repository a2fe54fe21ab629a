// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/RowDisplay.h"

#include "cli/ColumnWidth.h"
#include "cli/Console.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "text/PrintableText.h"

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using namespace std::chrono_literals;

/// Often enough to look alive, seldom enough to cost nothing.
constexpr auto kRepaintInterval = 100ms;

} // namespace

QString endingText(const NURVTask &task)
{
    if (task.cancelled())
        return u"Canceled"_s;
    return task.error() ? u"Error"_s : u"Complete"_s;
}

RowDisplay::RowDisplay(NURVTaskQueue &queue, Console &console) : m_queue(queue), m_console(console)
{
    m_repaintTimer.setSingleShot(true);
    m_repaintTimer.setInterval(kRepaintInterval);
    connect(&m_repaintTimer, &QTimer::timeout, this, &RowDisplay::repaint);
    if (!console.canRedraw())
        return;
    connect(&queue, &NURVTaskQueue::taskEnded, this, &RowDisplay::taskEnded);
    connect(&queue, &NURVTaskQueue::rowChanged, this, &RowDisplay::rowChanged);
}

RowDisplay::~RowDisplay()
{
    m_console.setLiveLines({});
}

void RowDisplay::rowChanged(int row)
{
    const std::shared_ptr<NURVTask> &task = m_queue.panelArray()[static_cast<std::size_t>(row)];
    if (task->isActive() && std::find(m_running.begin(), m_running.end(), task) == m_running.end())
        m_running.push_back(task);
    if (!m_repaintTimer.isActive())
        m_repaintTimer.start();
}

void RowDisplay::taskEnded(const std::shared_ptr<NURVTask> &task)
{
    ++m_endedCount;
    m_running.erase(std::remove(m_running.begin(), m_running.end(), task), m_running.end());
    if (m_running.empty())
        m_console.setLiveLines({});
    if (!m_repaintTimer.isActive())
        m_repaintTimer.start();
}

void RowDisplay::repaint()
{
    const int columns = Console::columns() - 1;
    // One row for the count, one for the cursor, one for the line above.
    const int limit = std::max(1, Console::rows() - 3);
    QStringList lines;
    for (const std::shared_ptr<NURVTask> &task : m_running) {
        if (lines.size() == limit)
            break;
        lines.append(lineOf(*task, columns));
    }
    if (!m_running.empty()) {
        const int known = m_endedCount + m_queue.taskCount();
        lines.append(u"%1 of %2 ended, %3 running"_s.arg(m_endedCount).arg(known).arg(m_running.size()));
    }
    m_console.setLiveLines(lines);
}

QString RowDisplay::lineOf(const NURVTask &task, int columns) const
{
    const RowProgress &progress = task.progressIndicator();
    const QString percent =
        progress.indeterminate
            ? u"   "_s
            : QString::number(std::clamp(progress.value, 0.0, 100.0), 'f', 0).rightJustified(3) + u'%';
    const QString status = printableLine(task.topTextField().text);
    const QString title = printableLine(task.textField().text.isEmpty() ? task.title() : task.textField().text);
    // The name may take what the status leaves, but at least half of the line.
    const int fixed = displayWidth(percent) + 4;
    const int titleColumns = std::max(columns / 2, columns - fixed - displayWidth(status));
    return percent + u"  "_s + elideMiddle(title, std::max(1, titleColumns - 4)) + u"  "_s + status;
}

} // namespace nurv
