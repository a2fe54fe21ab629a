// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv::test {

/// The descriptor on which a resident program hears of its requests.
constexpr int kServerSocket = 3;

/// The head of a request, which comes with three descriptors. Behind it come `size` bytes of words, each with
/// a NUL at its end: the working folder, the arguments with the program's name, the environment.
/// The answers are two numbers of 32 bits: the process, and, when it has ended, what waitpid tells of it.
struct ResidentRequest {
    std::uint32_t size = 0;
    std::uint32_t argumentCount = 0;
    std::uint32_t umask = 0;
};

} // namespace nurv::test
