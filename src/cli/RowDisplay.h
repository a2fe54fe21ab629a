// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace nurv {

class Console;
class NURVTask;
class NURVTaskQueue;

/// The rows of the running jobs on standard error: one live line each on a terminal,
/// nothing elsewhere.
class RowDisplay : public QObject {
    Q_OBJECT

public:
    /// Both must outlive the display.
    RowDisplay(NURVTaskQueue &queue, Console &console);
    /// Takes the live lines away.
    ~RowDisplay() override;

private:
    void rowChanged(int row);
    void taskEnded(const std::shared_ptr<NURVTask> &task);
    void repaint();
    [[nodiscard]] QString lineOf(const NURVTask &task, int columns) const;

    NURVTaskQueue &m_queue;
    Console &m_console;
    QTimer m_repaintTimer;
    std::vector<std::shared_ptr<NURVTask>> m_running; ///< in the order of their starts
    int m_endedCount = 0;
};

/// "Complete", "Error" or "Canceled": how a job that has ended is called.
[[nodiscard]] QString endingText(const NURVTask &task);

} // namespace nurv
