// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <sys/types.h>

namespace nurv {

/// The system's text for a value of `errno`.
[[nodiscard]] std::string errorText(int error);

/// Throw ToolError, of the kind Read or Write: "cannot read NAME: " and that text.
[[noreturn]] void failRead(const std::string &name, int error);
[[noreturn]] void failWrite(const std::string &name, int error);

/// read(2) that goes on after a signal and waits where the descriptor would not block.
/// Returns 0 at the end of the input, -1 with `errno` on failure.
[[nodiscard]] ssize_t readSome(int descriptor, std::span<uint8_t> bytes);

/// write(2) until everything is written, in the same way. Returns false with `errno`.
[[nodiscard]] bool writeAll(int descriptor, std::span<const uint8_t> bytes);

/// The same at an offset of a regular file, which keeps its position.
[[nodiscard]] bool writeAllAt(int descriptor, std::span<const uint8_t> bytes, uint64_t offset);

} // namespace nurv
