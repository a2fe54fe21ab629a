// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

// The numbers of a disc.

constexpr void putBigEndian16(uint8_t *at, uint16_t value)
{
    at[0] = static_cast<uint8_t>(value >> 8);
    at[1] = static_cast<uint8_t>(value);
}

constexpr void putBigEndian32(uint8_t *at, uint32_t value)
{
    putBigEndian16(at, static_cast<uint16_t>(value >> 16));
    putBigEndian16(at + 2, static_cast<uint16_t>(value));
}

[[nodiscard]] constexpr uint16_t bigEndian16(const uint8_t *at)
{
    return static_cast<uint16_t>(at[0] << 8 | at[1]);
}

[[nodiscard]] constexpr uint32_t bigEndian32(const uint8_t *at)
{
    return static_cast<uint32_t>(bigEndian16(at)) << 16 | bigEndian16(at + 2);
}

} // namespace nurv
