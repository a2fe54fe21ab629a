// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>

namespace nurv {

class NURVTask;

/// Keeps the row of a job that reads many files, several at a time, as if it read one after the other. Nobody waits for the
/// painting, which would take longer than the reading of a small file: the row shows how far the job is when the GUI thread
/// gets to it, and at the end all that was done.
class RowOfFiles {
public:
    /// Paints the row once the first `done` files are through, and those behind them may be in work; GUI thread.
    using Paint = std::function<void(qsizetype done)>;

    /// The job must be held by a shared pointer. Its texts belong to `paint` until the end of this object.
    RowOfFiles(NURVTask &task, qsizetype count, Paint paint);
    /// Paints what was done, and waits for that. Nothing is painted afterwards.
    ~RowOfFiles();
    RowOfFiles(const RowOfFiles &) = delete;
    RowOfFiles &operator=(const RowOfFiles &) = delete;

    /// The file is through. Any thread.
    void markDone(qsizetype index);

private:
    struct Progress;
    std::shared_ptr<Progress> m_progress;
};

} // namespace nurv
