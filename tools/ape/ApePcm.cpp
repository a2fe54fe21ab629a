// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApePcm.h"

#include "support/Bytes.h"

#include <cstddef>

namespace nurv {

namespace {

constexpr int32_t kByteOffset = 128;

} // namespace

void readPcm(std::span<const uint8_t> pcm, unsigned bitsPerSample, std::span<int32_t> samples)
{
    const uint8_t *const from = pcm.data();
    const size_t count = samples.size();
    if (bitsPerSample == 8) {
        for (size_t i = 0; i < count; ++i)
            samples[i] = from[i] - kByteOffset;
    } else if (bitsPerSample == 16) {
        for (size_t i = 0; i < count; ++i)
            samples[i] = static_cast<int16_t>(littleEndian16(from + 2 * i));
    } else {
        for (size_t i = 0; i < count; ++i) {
            const uint8_t *const at = from + 3 * i;
            samples[i] = littleEndian16(at) | static_cast<int8_t>(at[2]) * 65536;
        }
    }
}

void writePcm(std::span<const int32_t> samples, unsigned bitsPerSample, std::span<uint8_t> pcm)
{
    uint8_t *const to = pcm.data();
    const size_t count = samples.size();
    if (bitsPerSample == 8) {
        for (size_t i = 0; i < count; ++i)
            to[i] = static_cast<uint8_t>(static_cast<uint32_t>(samples[i]) + kByteOffset);
    } else if (bitsPerSample == 16) {
        for (size_t i = 0; i < count; ++i)
            putLittleEndian16(to + 2 * i, static_cast<uint16_t>(samples[i]));
    } else {
        for (size_t i = 0; i < count; ++i) {
            putLittleEndian16(to + 3 * i, static_cast<uint16_t>(samples[i]));
            to[3 * i + 2] = static_cast<uint8_t>(static_cast<uint32_t>(samples[i]) >> 16);
        }
    }
}

} // namespace nurv
