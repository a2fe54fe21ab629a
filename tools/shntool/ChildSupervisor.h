// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <signal.h>
#include <sys/types.h>

namespace nurv {

/// Runs a child so that a signal that ends this program ends the child and what the child
/// has started, and is held back until all of that is gone. While it lives, the ending
/// signals (see EndingSignals.h) wait; one that was ignored stays ignored, by the child too.
///
///     SIGTERM ──> this program ──> child ; its orphans, as the children of this program
///
class ChildSupervisor {
public:
    ChildSupervisor();
    ~ChildSupervisor();
    ChildSupervisor(const ChildSupervisor &) = delete;
    ChildSupervisor &operator=(const ChildSupervisor &) = delete;

    /// Runs the program with those words, its name among them, and with the streams of
    /// this one. Blocks. Returns what waitpid(2) says of its end. Throws ToolError(Read)
    /// when it cannot be started.
    int run(const std::string &program, std::vector<std::string> words);

    /// The signal that asked for the end while the child ran, or 0.
    [[nodiscard]] int endingSignal() const { return m_endingSignal; }

private:
    int waitFor(pid_t child);
    void endOrphans();

    sigset_t m_held;
    sigset_t m_formerMask;
    int m_endingSignal = 0;
};

/// Ends this program by that signal, without a core file.
[[noreturn]] void dieBySignal(int signal);

} // namespace nurv
