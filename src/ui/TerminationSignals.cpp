// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TerminationSignals.h"

#include <array>
#include <atomic>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<int> writingEnd = -1;
int readingEnd = -1;

extern "C" void wakeUp(int)
{
    const char byte = 1;
    // A full pipe holds a wake-up already.
    [[maybe_unused]] const ssize_t written = ::write(writingEnd, &byte, 1);
}

void handleBy(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals) {
        struct sigaction present = {};
        // Whoever started the program with the signal ignored (nohup) wants that kept.
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    readingEnd = ends[0];
    writingEnd = ends[1];
    m_notifier = std::make_unique<QSocketNotifier>(readingEnd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        while (::read(readingEnd, bytes.data(), bytes.size()) > 0) {
        }
        Q_EMIT received();
    });
    handleBy(wakeUp);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    handleBy(SIG_DFL);
    m_notifier.reset();
    ::close(writingEnd.exchange(-1));
    ::close(readingEnd);
}

} // namespace nurv
