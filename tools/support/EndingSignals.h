// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <csignal>

namespace nurv {

/// The signals that ask a program to end, and before which it clears away what it has begun.
inline constexpr std::array kEndingSignals{SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGXCPU};

} // namespace nurv
