// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RowOfFiles.h"

#include "base/GuiThread.h"
#include "engine/NURVTask.h"

#include <QTimer>

#include <chrono>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace nurv {

struct RowOfFiles::Progress : std::enable_shared_from_this<RowOfFiles::Progress> {
    std::shared_ptr<NURVTask> task; ///< alive while something waits to be painted
    Paint paint;
    std::mutex lock;
    std::vector<bool> isDone;
    qsizetype done = 0;     ///< of those from the first on
    bool isPosted = false;  ///< somebody is on the way to paint it, or rests from that
    bool isPainted = false; ///< the row shows `done`

    void paintNewest()
    {
        qsizetype shown = 0;
        {
            const std::scoped_lock locked(lock);
            if (std::exchange(isPainted, true))
                return;
            shown = done;
        }
        paint(shown);
    }

    /// Thousands of small files a second would keep the GUI thread, and the workers with it, busy with waking up.
    void paintAndRest()
    {
        {
            const std::scoped_lock locked(lock);
            if (isPainted) {
                isPosted = false;
                return;
            }
        }
        paintNewest();
        constexpr std::chrono::milliseconds kRest(10);
        // Nothing is painted after the end of the row, and then this must not keep the job.
        QTimer::singleShot(kRest, [resting = weak_from_this()] {
            if (const auto self = resting.lock())
                self->paintAndRest();
        });
    }

    /// Returns whether nobody is on the way to paint it.
    bool markDone(qsizetype index)
    {
        const std::scoped_lock locked(lock);
        isDone[static_cast<std::size_t>(index)] = true;
        const qsizetype before = done;
        while (done < static_cast<qsizetype>(isDone.size()) && isDone[static_cast<std::size_t>(done)])
            ++done;
        if (done == before)
            return false;
        isPainted = false;
        return !std::exchange(isPosted, true);
    }
};

RowOfFiles::RowOfFiles(NURVTask &task, qsizetype count, Paint paint) : m_progress(std::make_shared<Progress>())
{
    m_progress->task = task.shared_from_this();
    m_progress->paint = std::move(paint);
    m_progress->isDone.resize(static_cast<std::size_t>(count));
    showOnGuiThread([this] { m_progress->paintNewest(); });
}

RowOfFiles::~RowOfFiles()
{
    showOnGuiThread([this] { m_progress->paintNewest(); });
    const std::scoped_lock locked(m_progress->lock);
    m_progress->isPainted = true;
}

void RowOfFiles::markDone(qsizetype index)
{
    if (m_progress->markDone(index))
        postToGuiThread([progress = m_progress] { progress->paintAndRest(); });
}

} // namespace nurv
