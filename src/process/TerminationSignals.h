// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace nurv {

/// SIGINT, SIGTERM and SIGHUP as events of the GUI thread for as long as it lives,
/// so that jobs and their programs end in order; before and afterwards they end
/// the process at once. One that the program was started to ignore stays ignored.
/// At most one object at a time.
///
/// Where the system gives no pipe the signals end the process as ever; the log
/// says so.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    /// Readable while a signal has arrived that has not been announced yet; -1
    /// when there is no pipe.
    [[nodiscard]] int descriptor() const { return m_readingEnd.get(); }

Q_SIGNALS:
    /// The user pressed Ctrl-C.
    void interrupted();
    /// The system wants the process to end.
    void terminated();

private:
    void readSignals();

    FileDescriptor m_readingEnd;
    FileDescriptor m_writingEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace nurv
