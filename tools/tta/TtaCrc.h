// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

#include <zlib.h>

namespace nurv {

/// The CRC-32 of IEEE 802.3 over the bytes, going on from `crc`, that of the bytes before.
[[nodiscard]] inline uint32_t ttaCrc(std::span<const uint8_t> bytes, uint32_t crc = 0)
{
    return static_cast<uint32_t>(crc32_z(crc, bytes.data(), bytes.size()));
}

} // namespace nurv
