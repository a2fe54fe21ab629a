// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <mutex>
#include <set>
#include <string>
#include <thread>

#include <signal.h>

namespace nurv {

/// What has to go when a signal ends the program: the programs that it started, with all that those started, and
/// its private folders.
///
///     SIGTERM ──> thread of this object ──> kills and reaps children, removes folders ──> dies by the signal
///
/// There is one such object while a run lasts. It holds the ending signals (see EndingSignals.h) back from all
/// other threads; one that was ignored stays ignored.
class EndingCleanup {
public:
    EndingCleanup();
    ~EndingCleanup();
    EndingCleanup(const EndingCleanup &) = delete;
    EndingCleanup &operator=(const EndingCleanup &) = delete;

    /// Null where there is none.
    [[nodiscard]] static EndingCleanup *current();

    /// Held while a program is started, while a private folder is made, and while an output gets its name: a signal
    /// comes before or after that. Never again free once a signal is ending the program. Of nothing where there is no
    /// such object.
    [[nodiscard]] static std::unique_lock<std::mutex> hold();

    /// While it is held.
    void addFolder(const std::string &path) { m_folders.insert(path); }
    void removeFolder(const std::string &path) { m_folders.erase(path); }

    /// The signals as they were, for programs that are started.
    [[nodiscard]] const sigset_t &formerMask() const { return m_formerMask; }

private:
    void waitForSignals();
    [[noreturn]] void end(int signal);
    void removeFolders() const;

    sigset_t m_held;
    sigset_t m_formerMask;
    std::mutex m_mutex;
    std::set<std::string> m_folders;
    int m_signals = -1; ///< signalfd(2)
    int m_stop = -1;    ///< eventfd(2)
    std::thread m_thread;
};

} // namespace nurv
