// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusListModel.h"

#include "app/ProblemLine.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "text/PrintableText.h"
#include "ui/ToolTipText.h"

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kRepaintInterval{34};

} // namespace

StatusListModel::StatusListModel(NURVTaskQueue &queue, QObject *parent)
    : QAbstractListModel(parent), m_queue(queue), m_count(static_cast<int>(queue.panelArray().size()))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kRepaintInterval);
    connect(&m_timer, &QTimer::timeout, this, &StatusListModel::flush);
    connect(&queue, &NURVTaskQueue::rowAppended, this, &StatusListModel::wake);
    connect(&queue, &NURVTaskQueue::rowChanged, this, &StatusListModel::markChanged);
    connect(&queue, &NURVTaskQueue::rowsReset, this, &StatusListModel::readAnew);
    connect(&queue, &NURVTaskQueue::taskSettled, this, [this](const std::shared_ptr<NURVTask> &task) {
        if (!task->error() || task->cancelled())
            return;
        const auto &rows = m_queue.panelArray();
        const auto place = std::find(rows.begin(), rows.end(), task);
        if (place == rows.end())
            return;
        m_failed.insert(task.get());
        markChanged(static_cast<int>(place - rows.begin()));
    });
    connect(&queue, &NURVTaskQueue::scrollRequested, this, [this](int row) {
        m_scrollRow = row;
        wake();
    });
}

std::shared_ptr<NURVTask> StatusListModel::task(int row) const
{
    const auto &rows = m_queue.panelArray();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size())
        return nullptr;
    return rows[static_cast<std::size_t>(row)];
}

NURVTask *StatusListModel::taskAt(const QModelIndex &index)
{
    const auto *const model = qobject_cast<const StatusListModel *>(index.model());
    return model != nullptr ? model->task(index.row()).get() : nullptr;
}

bool StatusListModel::hasReport(const NURVTask &task)
{
    return task.isDone() && task.error();
}

QString StatusListModel::reportOf(const NURVTask &task)
{
    return reportHead(task) + task.report().trimmed();
}

int StatusListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_count;
}

QVariant StatusListModel::data(const QModelIndex &index, int role) const
{
    const std::shared_ptr<NURVTask> job = index.isValid() ? task(index.row()) : nullptr;
    if (!job)
        return {};
    switch (role) {
    case Qt::DisplayRole: return printableLine(job->textField().text.isEmpty() ? job->title() : job->textField().text);
    case Qt::ToolTipRole: {
        const QString report = hasReport(*job) ? reportOf(*job) : QString();
        return toolTipText(report.isEmpty() ? job->title() : report);
    }
    case Qt::AccessibleTextRole: return spokenText(*job);
    case ReasonRole: return reasonOf(*job);
    default: return {};
    }
}

QString StatusListModel::reasonOf(const NURVTask &task) const
{
    if (!m_failed.contains(&task))
        return {};
    if (!task.outcome().problem.isEmpty())
        return printableLine(task.outcome().problem);
    // Rows are painted often, and reports can be long.
    const auto known = m_reasons.constFind(&task);
    if (known != m_reasons.cend())
        return *known;
    return *m_reasons.insert(&task, printableLine(problemLine(task.report(), task.sourcePath(), {})));
}

QString StatusListModel::spokenText(const NURVTask &task) const
{
    QStringList parts{task.title()};
    if (task.cancelled())
        parts.append(tr("Canceled"));
    parts.append(task.topTextField().text);
    if (const QString reason = reasonOf(task); !reason.isEmpty())
        parts.append(reason);
    const RowProgress &progress = task.progressIndicator();
    if (task.isActive() && !progress.hidden && !progress.indeterminate)
        parts.append(tr("%1 percent").arg(static_cast<int>(progress.value)));
    return printableLine(parts.join(u", "_s));
}

void StatusListModel::wake()
{
    if (!m_timer.isActive())
        m_timer.start();
}

void StatusListModel::markChanged(int row)
{
    m_firstChanged = m_firstChanged < 0 ? row : std::min(m_firstChanged, row);
    m_lastChanged = std::max(m_lastChanged, row);
    wake();
}

void StatusListModel::readAnew()
{
    beginResetModel();
    m_count = static_cast<int>(m_queue.panelArray().size());
    QSet<const NURVTask *> listed;
    for (const std::shared_ptr<NURVTask> &task : m_queue.panelArray())
        listed.insert(task.get());
    m_failed.intersect(listed);
    m_reasons.clear();
    m_firstChanged = -1;
    m_lastChanged = -1;
    m_scrollRow = -1;
    endResetModel();
}

void StatusListModel::flush()
{
    m_timer.stop();
    const int rows = static_cast<int>(m_queue.panelArray().size());
    if (rows > m_count) {
        beginInsertRows({}, m_count, rows - 1);
        m_count = rows;
        endInsertRows();
    }
    if (m_firstChanged >= 0) {
        const int first = m_firstChanged;
        const int last = std::min(m_lastChanged, m_count - 1);
        m_firstChanged = -1;
        m_lastChanged = -1;
        if (first <= last)
            Q_EMIT dataChanged(index(first), index(last));
    }
    if (m_scrollRow >= 0 && m_scrollRow < m_count)
        Q_EMIT scrollRequested(m_scrollRow);
    m_scrollRow = -1;
}

} // namespace nurv
