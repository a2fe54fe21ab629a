// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace nurv {

/// Whether they begin with those characters, as most formats do.
[[nodiscard]] constexpr bool startsWith(std::span<const uint8_t> bytes, std::string_view text)
{
    return bytes.size() >= text.size()
           && std::equal(text.begin(), text.end(), bytes.begin(),
                         [](char left, uint8_t right) { return static_cast<uint8_t>(left) == right; });
}

[[nodiscard]] constexpr uint16_t littleEndian16(const uint8_t *at)
{
    return static_cast<uint16_t>(at[0] | at[1] << 8);
}

[[nodiscard]] constexpr uint32_t littleEndian32(const uint8_t *at)
{
    return littleEndian16(at) | static_cast<uint32_t>(littleEndian16(at + 2)) << 16;
}

constexpr void putLittleEndian16(uint8_t *at, uint16_t value)
{
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
}

constexpr void putLittleEndian32(uint8_t *at, uint32_t value)
{
    putLittleEndian16(at, static_cast<uint16_t>(value));
    putLittleEndian16(at + 2, static_cast<uint16_t>(value >> 16));
}

} // namespace nurv
