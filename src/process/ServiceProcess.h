// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "process/ChildProcess.h"

#include <QString>

#include <memory>

namespace nurv {

/// A long-lived program of our own that works for this process and is asked over a socket, which is
/// its descriptor 3; what it writes to its standard output and errors goes nowhere. It is no program of a
/// batch and is not counted among the children, but carries their mark, and ends with them. Belongs to one
/// thread at a time; `endAll` may be called from any.
class ServiceProcess {
public:
    /// Starts it. Throws NurvFailure with the reason.
    [[nodiscard]] static std::unique_ptr<ServiceProcess> start(const QString &program);
    /// Kills it if it still runs, and reaps it.
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

    [[nodiscard]] int socket() const { return m_socket.get(); }
    [[nodiscard]] bool hasEnded() const;
    /// Waits a moment for a program that has closed its socket, kills it otherwise, and tells how
    /// it ended. To be called once.
    [[nodiscard]] ChildExit end();

    /// Kills all of them at once; with `refuseNew` no further one starts. Waits for nothing.
    static void endAll(bool refuseNew);
    [[nodiscard]] static int runningCount();

private:
    ServiceProcess(pid_t pid, FileDescriptor socket) : m_pid(pid), m_socket(std::move(socket)) {}

    pid_t m_pid;
    FileDescriptor m_socket;
};

} // namespace nurv
