// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/TerminationSignals.h"

#include "base/Log.h"
#include "base/SystemError.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <signal.h>

namespace nurv {

namespace {

constexpr std::array kWatched{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> g_writingEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

extern "C" void noteSignal(int number)
{
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe holds enough signals already.
    [[maybe_unused]] const ssize_t written = ::write(g_writingEnd, &byte, 1);
    errno = savedErrno;
}

void handleBy(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    for (const int number : kWatched) {
        struct sigaction present = {};
        // What `nohup` and background shells have switched off stays off.
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qCWarning(processLog).noquote() << "Signals end the process at once:" << systemErrorText(errno);
        return;
    }
    m_readingEnd = FileDescriptor(ends[0]);
    m_writingEnd = FileDescriptor(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(m_readingEnd.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TerminationSignals::readSignals);
    g_writingEnd = m_writingEnd.get();
    handleBy(noteSignal);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    handleBy(SIG_DFL);
    g_writingEnd = -1;
}

void TerminationSignals::readSignals()
{
    std::array<unsigned char, 64> numbers{};
    const ssize_t count = ::read(m_readingEnd.get(), numbers.data(), numbers.size());
    for (ssize_t i = 0; i < count; ++i) {
        if (numbers[static_cast<std::size_t>(i)] == SIGINT)
            Q_EMIT interrupted();
        else
            Q_EMIT terminated();
    }
}

} // namespace nurv
