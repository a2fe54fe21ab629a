// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BatchWatch.h"

#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/WorkerThreads.h"
#include "desktop/DesktopServices.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"

#include <QFileInfo>
#include <QPointer>

#include <cmath>
#include <string>
#include <system_error>
#include <typeinfo>

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kTellInterval{200};
/// The time left goes down although no job tells anything.
constexpr std::chrono::milliseconds kTick{1000};
/// Sizes are handed over in portions, so that the first are known soon.
constexpr std::size_t kPortion = 256;
/// Steps of the icon's bar that somebody can see.
constexpr double kIconSteps = 200.0;

std::chrono::microseconds steadyTime()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

/// Jobs of one class with sources of one format take about the same time for a byte.
std::string kindOf(const NURVTask &task)
{
    return typeid(task).name() + QFileInfo(task.sourcePath()).suffix().toLower().prepend(u' ').toStdString();
}

BatchProgress::Ending endingOf(const NURVTask &task)
{
    if (task.cancelled())
        return BatchProgress::Ending::Canceled;
    return task.error() ? BatchProgress::Ending::Failed : BatchProgress::Ending::Done;
}

} // namespace

BatchWatch::BatchWatch(NURVTaskQueue &queue, DesktopServices &services, QObject *parent)
    : BatchWatch(queue, services, steadyTime, parent)
{
}

BatchWatch::BatchWatch(NURVTaskQueue &queue, DesktopServices &services, BatchProgress::Clock clock, QObject *parent)
    : QObject(parent), m_queue(queue), m_services(services), m_clock(std::move(clock)), m_progress(m_clock)
{
    m_tellTimer.setSingleShot(true);
    m_tellTimer.setInterval(kTellInterval);
    m_tick.setInterval(kTick);
    connect(&m_tellTimer, &QTimer::timeout, this, &BatchWatch::flush);
    connect(&m_tick, &QTimer::timeout, this, &BatchWatch::flush);
    connect(&queue, &NURVTaskQueue::rowAppended, this, &BatchWatch::taskAdded);
    connect(&queue, &NURVTaskQueue::rowChanged, this, &BatchWatch::rowChanged);
    connect(&queue, &NURVTaskQueue::taskEnded, this, &BatchWatch::taskEnded);
    connect(&queue, &NURVTaskQueue::taskSettled, this, &BatchWatch::taskSettled);
    connect(&queue, &NURVTaskQueue::heldChanged, this, &BatchWatch::flush);
    connect(&queue, &NURVTaskQueue::outputWindowRequested, this, [this](const QString &text, const QString &title) {
        if (m_state == State::Running && !text.trimmed().isEmpty())
            m_report = {text, title};
    });
}

BatchWatch::~BatchWatch()
{
    *m_stopsLookingUp = true;
}

bool BatchWatch::isPaused() const
{
    return m_queue.isHeld();
}

void BatchWatch::beginBatch()
{
    m_progress = BatchProgress(m_clock);
    m_summary = {};
    m_report.reset();
    m_numberOfTask.clear();
    m_lookups.clear();
    m_unsettled = 0;
    ++m_batch;
    m_state = State::Running;
    m_tick.start();
    // What was said of the last batch must not stand beside the rows of this one.
    QMetaObject::invokeMethod(this, &BatchWatch::flush, Qt::QueuedConnection);
}

void BatchWatch::taskAdded(int row)
{
    const auto &rows = m_queue.panelArray();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size())
        return;
    if (m_state != State::Running)
        beginBatch();
    const NURVTask &task = *rows[static_cast<std::size_t>(row)];
    const std::size_t number = m_progress.add(kindOf(task));
    m_numberOfTask.insert(&task, number);
    ++m_unsettled;
    if (const QStringList paths = task.sourcePaths(); !paths.isEmpty())
        m_lookups.emplace_back(number, paths);
    wake();
}

void BatchWatch::rowChanged(int row)
{
    const auto &rows = m_queue.panelArray();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size())
        return;
    const NURVTask &task = *rows[static_cast<std::size_t>(row)];
    const auto number = m_numberOfTask.constFind(&task);
    if (number == m_numberOfTask.cend() || !task.isActive())
        return;
    m_progress.begin(*number);
    if (const RowProgress &progress = task.progressIndicator(); !progress.indeterminate)
        m_progress.advance(*number, progress.value);
    wake();
}

void BatchWatch::taskEnded(const std::shared_ptr<NURVTask> &task)
{
    const auto number = m_numberOfTask.constFind(task.get());
    if (number == m_numberOfTask.cend())
        return;
    m_progress.end(*number, endingOf(*task));
    wake();
}

void BatchWatch::taskSettled(const std::shared_ptr<NURVTask> &task)
{
    const auto number = m_numberOfTask.constFind(task.get());
    if (number == m_numberOfTask.cend())
        return;
    // Its source may have gone before anybody looked at it.
    m_progress.learnSize(*number, task->outcome().sourceBytes);
    m_numberOfTask.erase(number);
    m_summary.add(*task);
    --m_unsettled;
    if (m_queue.taskCount() > 0 || m_unsettled > 0) {
        wake();
        return;
    }
    m_summary.duration = std::chrono::duration_cast<std::chrono::milliseconds>(m_progress.elapsed());
    m_state = State::Over;
    m_tick.stop();
    flush();
}

void BatchWatch::showReport()
{
    if (m_report)
        m_queue.showOutputWindow(m_report->first, m_report->second);
}

void BatchWatch::wake()
{
    if (!m_tellTimer.isActive())
        m_tellTimer.start();
}

void BatchWatch::flush()
{
    m_tellTimer.stop();
    lookUpSizes();
    showOnIcon(m_state == State::Running ? std::optional(m_progress.share()) : std::nullopt);
    Q_EMIT changed();
}

void BatchWatch::stop()
{
    m_isStopped = true;
    if (m_shareOnIcon)
        m_services.setProgress(m_shareOnIcon = std::nullopt);
}

void BatchWatch::showOnIcon(std::optional<double> share)
{
    if (m_isStopped)
        return;
    if (share)
        share = std::floor(*share * kIconSteps) / kIconSteps;
    if (m_shareOnIcon != share)
        m_services.setProgress(m_shareOnIcon = share);
}

void BatchWatch::lookUpSizes()
{
    if (m_isLookingUp || m_lookups.empty())
        return;
    const auto work = [watch = QPointer(this), batch = m_batch, lookups = std::exchange(m_lookups, {}),
                       stops = m_stopsLookingUp] {
        std::vector<std::pair<std::size_t, qint64>> sizes;
        const auto handOver = [&](bool isLast) {
            postToGuiThread([watch, batch, sizes = std::exchange(sizes, {}), isLast] {
                if (!watch)
                    return;
                watch->takeSizes(batch, sizes);
                if (isLast)
                    watch->m_isLookingUp = false;
            });
        };
        for (const auto &[number, paths] : lookups) {
            if (*stops)
                return;
            qint64 bytes = 0;
            for (const QString &path : paths)
                bytes += QFileInfo(path).size();
            sizes.emplace_back(number, bytes);
            if (sizes.size() == kPortion)
                handOver(false);
        }
        handOver(true);
    };
    m_isLookingUp = true;
    try {
        workerThreads::start(work);
    } catch (const std::system_error &failure) {
        // Each job counts for as much as the others then.
        m_isLookingUp = false;
        qCWarning(engineLog, "The sizes of the sources are not looked up: %s", failure.what());
    }
}

void BatchWatch::takeSizes(int batch, const std::vector<std::pair<std::size_t, qint64>> &sizes)
{
    if (batch != m_batch)
        return;
    for (const auto &[number, bytes] : sizes)
        m_progress.learnSize(number, bytes);
    wake();
}

} // namespace nurv
