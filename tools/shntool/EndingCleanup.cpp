// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/EndingCleanup.h"

#include "support/EndingSignals.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

/// What cannot even be killed hangs in the system.
constexpr std::chrono::seconds kKillLimit{4};
constexpr std::chrono::milliseconds kPause{5};

std::atomic<EndingCleanup *> g_current{nullptr};

bool isIgnored(int signal)
{
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// The children of all threads of this process, also those that it inherited.
std::vector<pid_t> childrenOfThisProcess()
{
    std::vector<pid_t> children;
    std::error_code error;
    for (const auto &task : fs::directory_iterator("/proc/self/task", error)) {
        std::ifstream list(task.path() / "children");
        for (pid_t child = 0; list >> child;)
            children.push_back(child);
    }
    return children;
}

/// An encoder whose input ends takes that for the end of the sound: it has to be gone before its file is removed.
void killChildren()
{
    const auto start = std::chrono::steady_clock::now();
    for (;;) {
        for (const pid_t child : childrenOfThisProcess())
            ::kill(child, SIGKILL);
        pid_t ended = 0;
        while ((ended = ::waitpid(-1, nullptr, WNOHANG)) > 0) {
        }
        if (ended < 0 || std::chrono::steady_clock::now() - start > kKillLimit)
            return;
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace

EndingCleanup::EndingCleanup()
{
    sigemptyset(&m_held);
    for (const int signal : kEndingSignals) {
        if (!isIgnored(signal))
            sigaddset(&m_held, signal);
    }
    // Where it is ignored, children vanish before anybody asks for their status.
    std::signal(SIGCHLD, SIG_DFL);
    ::pthread_sigmask(SIG_BLOCK, &m_held, &m_formerMask);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    m_signals = ::signalfd(-1, &m_held, SFD_CLOEXEC | SFD_NONBLOCK);
    m_stop = ::eventfd(0, EFD_CLOEXEC);
    if (m_signals < 0 || m_stop < 0)
        throw ToolError(ToolError::Kind::Read, "cannot wait for signals: " + errorText(errno));
    m_thread = std::thread([this] { waitForSignals(); });
    g_current = this;
}

EndingCleanup::~EndingCleanup()
{
    g_current = nullptr;
    [[maybe_unused]] const int done = ::eventfd_write(m_stop, 1);
    m_thread.join();
    ::close(m_signals);
    ::close(m_stop);
    ::pthread_sigmask(SIG_SETMASK, &m_formerMask, nullptr);
}

EndingCleanup *EndingCleanup::current()
{
    return g_current;
}

std::unique_lock<std::mutex> EndingCleanup::hold()
{
    EndingCleanup *cleanup = g_current;
    return cleanup ? std::unique_lock(cleanup->m_mutex) : std::unique_lock<std::mutex>();
}

void EndingCleanup::waitForSignals()
{
    std::array<pollfd, 2> waited{pollfd{.fd = m_signals, .events = POLLIN, .revents = 0},
                                 pollfd{.fd = m_stop, .events = POLLIN, .revents = 0}};
    for (;;) {
        if (::poll(waited.data(), waited.size(), -1) < 0)
            continue;
        signalfd_siginfo info{};
        if (::read(m_signals, &info, sizeof info) == sizeof info)
            end(static_cast<int>(info.ssi_signo));
        if (waited[1].revents != 0)
            return;
    }
}

void EndingCleanup::end(int signal)
{
    // Nothing is started, and nothing gets its name, any more.
    m_mutex.lock();
    killChildren();
    removeFolders();
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &mask, nullptr);
    // First to the handler that removes temporary files, then to the default action.
    ::pthread_kill(::pthread_self(), signal);
    std::signal(signal, SIG_DFL);
    ::pthread_kill(::pthread_self(), signal);
    std::abort();
}

void EndingCleanup::removeFolders() const
{
    for (const std::string &folder : m_folders) {
        std::error_code error;
        fs::remove_all(folder, error);
    }
}

} // namespace nurv
