// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace nurv {

/// The number in the head of a FLAC frame: of the frame, or of its first sample. It has up to 36
/// bits and is coded like the characters of UTF-8 (RFC 9639, 9.1.5).
struct FlacCodedNumber {
    std::uint64_t value = 0;
    std::size_t bytes = 0; ///< that it takes: 1 to 7

    /// Nothing when these bytes do not begin with a whole one.
    static std::optional<FlacCodedNumber> read(std::span<const std::uint8_t> bytes);
};

} // namespace nurv
