// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BatchSummary.h"
#include "engine/BatchProgress.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace nurv {

class DesktopServices;
class NURVTask;
class NURVTaskQueue;

/// Watches the queue: how far all of its jobs are, and what came of them once nothing is left to do. Tells the views
/// and the desktop's icon, a few times a second.
///
///     idle ── first job ──> running ── queue empty, all settled ──> over ── next job ──> running
///
/// Jobs that are added meanwhile belong to the same batch. The sizes of the sources are looked up by a worker. GUI
/// thread.
class BatchWatch final : public QObject {
    Q_OBJECT

public:
    enum class State { Idle, Running, Over };

    /// Queue and services must outlive it.
    BatchWatch(NURVTaskQueue &queue, DesktopServices &services, BatchProgress::Clock clock, QObject *parent = nullptr);
    BatchWatch(NURVTaskQueue &queue, DesktopServices &services, QObject *parent = nullptr);
    ~BatchWatch() override;

    [[nodiscard]] State state() const { return m_state; }
    /// Whether waiting jobs are held back.
    [[nodiscard]] bool isPaused() const;
    /// Of the batch that runs, or did last.
    [[nodiscard]] const BatchProgress &progress() const { return m_progress; }
    /// Complete once the batch is over.
    [[nodiscard]] const BatchSummary &summary() const { return m_summary; }
    /// Whether a window with a report that says anything was asked for in the batch.
    [[nodiscard]] bool hasReport() const { return m_report.has_value(); }
    /// Asks for the last of them again.
    void showReport();

    /// Tells what is waiting to be told, now.
    void flush();
    /// The application ends: the icon shows no progress any more.
    void stop();

Q_SIGNALS:
    void changed();

private:
    /// A source, or several, whose size is wanted.
    using Lookup = std::pair<std::size_t, QStringList>;

    void taskAdded(int row);
    void rowChanged(int row);
    void taskEnded(const std::shared_ptr<NURVTask> &task);
    void taskSettled(const std::shared_ptr<NURVTask> &task);
    void beginBatch();
    void wake();
    void lookUpSizes();
    void takeSizes(int batch, const std::vector<std::pair<std::size_t, qint64>> &sizes);
    void showOnIcon(std::optional<double> share);

    NURVTaskQueue &m_queue;
    DesktopServices &m_services;
    BatchProgress::Clock m_clock;
    BatchProgress m_progress;
    BatchSummary m_summary;
    State m_state = State::Idle;
    QHash<const NURVTask *, std::size_t> m_numberOfTask; ///< until it is settled
    int m_unsettled = 0;
    int m_batch = 0;
    std::optional<std::pair<QString, QString>> m_report; ///< text and title
    std::vector<Lookup> m_lookups;                       ///< not begun
    bool m_isLookingUp = false;
    std::shared_ptr<std::atomic<bool>> m_stopsLookingUp = std::make_shared<std::atomic<bool>>(false);
    std::optional<double> m_shareOnIcon;
    bool m_isStopped = false;
    QTimer m_tellTimer;
    QTimer m_tick;
};

} // namespace nurv
