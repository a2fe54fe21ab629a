// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ChildSupervisor.h"

#include "support/EndingSignals.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

/// How long orphans may take to end after a signal that asks them to.
constexpr std::chrono::seconds kOrphanLimit{2};

bool isIgnored(int signal)
{
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// In the same way whatever the reason: shells pass over some of the other signals, and
/// some leave a core file. What is stopped takes it once it goes on.
void askToEnd(pid_t child)
{
    ::kill(child, SIGTERM);
    ::kill(child, SIGCONT);
}

/// The children of this process, also those that it inherited.
std::vector<pid_t> childrenOfThisProcess()
{
    std::ifstream list("/proc/thread-self/children");
    std::vector<pid_t> children;
    for (pid_t child = 0; list >> child;)
        children.push_back(child);
    return children;
}

} // namespace

ChildSupervisor::ChildSupervisor()
{
    sigemptyset(&m_held);
    sigaddset(&m_held, SIGCHLD);
    for (const int signal : kEndingSignals) {
        if (!isIgnored(signal))
            sigaddset(&m_held, signal);
    }
    // Where it is ignored, children vanish before anybody asks for their status.
    std::signal(SIGCHLD, SIG_DFL);
    ::sigprocmask(SIG_BLOCK, &m_held, &m_formerMask);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

ChildSupervisor::~ChildSupervisor()
{
    ::sigprocmask(SIG_SETMASK, &m_formerMask, nullptr);
}

int ChildSupervisor::run(const std::string &program, std::vector<std::string> words)
{
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    ::posix_spawnattr_setsigmask(&attributes, &m_formerMask);
    pid_t child = -1;
    const int error = ::posix_spawn(&child, program.c_str(), nullptr, &attributes, pointers.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw ToolError(ToolError::Kind::Read, "cannot start " + program + ": " + errorText(error));
    return waitFor(child);
}

int ChildSupervisor::waitFor(pid_t child)
{
    for (;;) {
        const int signal = ::sigwaitinfo(&m_held, nullptr);
        if (signal > 0 && signal != SIGCHLD) {
            m_endingSignal = signal;
            askToEnd(child);
        }
        int status = 0;
        for (pid_t ended = 0; (ended = ::waitpid(-1, &status, WNOHANG)) > 0;) {
            if (ended != child)
                continue;
            if (m_endingSignal != 0 || WIFSIGNALED(status))
                endOrphans();
            return status;
        }
    }
}

/// An encoder whose input ends takes that for the end of the sound: it has to be gone
/// before its file is removed.
void ChildSupervisor::endOrphans()
{
    const auto start = std::chrono::steady_clock::now();
    sigset_t childEnded;
    sigemptyset(&childEnded);
    sigaddset(&childEnded, SIGCHLD);
    for (;;) {
        const auto elapsed = std::chrono::steady_clock::now() - start;
        for (const pid_t orphan : childrenOfThisProcess()) {
            if (elapsed < kOrphanLimit)
                askToEnd(orphan);
            else
                ::kill(orphan, SIGKILL);
        }
        pid_t ended = 0;
        while ((ended = ::waitpid(-1, nullptr, WNOHANG)) > 0) {
        }
        // What cannot even be killed hangs in the system.
        if (ended < 0 || elapsed > 2 * kOrphanLimit)
            return;
        const timespec pause{.tv_sec = 0, .tv_nsec = 20'000'000};
        ::sigtimedwait(&childEnded, nullptr, &pause);
    }
}

void dieBySignal(int signal)
{
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
    std::signal(signal, SIG_DFL);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, signal);
    ::sigprocmask(SIG_UNBLOCK, &mask, nullptr);
    ::raise(signal);
    std::abort();
}

} // namespace nurv
