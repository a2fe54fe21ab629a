// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace nurv {

/// Turns SIGINT, SIGTERM and SIGHUP into signals of the event loop for as long as
/// it lives; before and afterwards they end the process at once. At most one
/// object at a time.
class InterruptWatcher : public QObject {
    Q_OBJECT

public:
    InterruptWatcher();
    ~InterruptWatcher() override;

    /// Readable while a signal has arrived that has not been announced yet.
    [[nodiscard]] int descriptor() const { return m_readFd; }

Q_SIGNALS:
    /// The user pressed Ctrl-C.
    void interrupted();
    /// The system wants the process to end.
    void terminated();

private:
    void readSignals();

    int m_readFd = -1;
    int m_writeFd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace nurv
