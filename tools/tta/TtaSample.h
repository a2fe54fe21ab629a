// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

/// One little-endian sample of a WAV file; those of 8 bits are unsigned there.
template<int BytesPerSample>
struct TtaSample {
    [[gnu::always_inline]] static int32_t load(const uint8_t *at)
    {
        if constexpr (BytesPerSample == 1)
            return at[0] - 128;
        else if constexpr (BytesPerSample == 2)
            return static_cast<int16_t>(at[0] | at[1] << 8);
        else
            return at[0] | at[1] << 8 | static_cast<int8_t>(at[2]) * 65536;
    }

    [[gnu::always_inline]] static void store(uint8_t *at, int32_t value)
    {
        at[0] = static_cast<uint8_t>(BytesPerSample == 1 ? value + 128 : value);
        if constexpr (BytesPerSample > 1)
            at[1] = static_cast<uint8_t>(value >> 8);
        if constexpr (BytesPerSample > 2)
            at[2] = static_cast<uint8_t>(value >> 16);
    }
};

} // namespace nurv
