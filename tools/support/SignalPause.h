// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/EndingSignals.h"

#include <csignal>

namespace nurv {

/// Holds the ending signals back while something exists that only the program's own course would remove.
class SignalPause {
public:
    SignalPause()
    {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : kEndingSignals)
            sigaddset(&ending, signal);
        ::pthread_sigmask(SIG_BLOCK, &ending, &m_former);
    }
    ~SignalPause() { ::pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }
    SignalPause(const SignalPause &) = delete;
    SignalPause &operator=(const SignalPause &) = delete;

private:
    sigset_t m_former;
};

} // namespace nurv
