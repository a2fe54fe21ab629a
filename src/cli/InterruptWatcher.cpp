// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InterruptWatcher.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <system_error>

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr std::array kWatched{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> g_writeFd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

void handleSignal(int number)
{
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe holds enough signals already.
    [[maybe_unused]] const ssize_t written = ::write(g_writeFd, &byte, 1);
    errno = savedErrno;
}

void setHandler(int number, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

bool isIgnored(int number)
{
    struct sigaction action {};
    ::sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

} // namespace

InterruptWatcher::InterruptWatcher()
{
    std::array<int, 2> fds{};
    if (::pipe2(fds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe2");
    m_readFd = fds[0];
    m_writeFd = fds[1];
    g_writeFd = m_writeFd;
    m_notifier = std::make_unique<QSocketNotifier>(m_readFd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readSignals(); });
    for (const int number : kWatched) {
        // What `nohup` and background shells have switched off stays off.
        if (!isIgnored(number))
            setHandler(number, handleSignal);
    }
}

InterruptWatcher::~InterruptWatcher()
{
    for (const int number : kWatched) {
        if (!isIgnored(number))
            setHandler(number, SIG_DFL);
    }
    g_writeFd = -1;
    m_notifier.reset();
    ::close(m_readFd);
    ::close(m_writeFd);
}

void InterruptWatcher::readSignals()
{
    std::array<unsigned char, 64> numbers{};
    const ssize_t count = ::read(m_readFd, numbers.data(), numbers.size());
    for (ssize_t i = 0; i < count; ++i) {
        if (numbers[static_cast<std::size_t>(i)] == SIGINT)
            Q_EMIT interrupted();
        else
            Q_EMIT terminated();
    }
}

} // namespace nurv
