// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenSamples.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace nurv::shorten {

namespace {

template<typename Sample, bool isBigEndian>
void store(std::span<const int32_t> samples, unsigned shift, uint8_t *at, size_t channels)
{
    using Limits = std::numeric_limits<Sample>;
    for (const int32_t sample : samples) {
        const auto shifted = static_cast<int32_t>(static_cast<uint32_t>(sample) << shift);
        const int32_t clipped = std::clamp<int32_t>(shifted, Limits::min(), Limits::max());
        if constexpr (sizeof(Sample) == 1) {
            *at = static_cast<uint8_t>(clipped);
        } else {
            auto word = static_cast<uint16_t>(clipped);
            if constexpr (isBigEndian != (std::endian::native == std::endian::big))
                word = __builtin_bswap16(word);
            std::memcpy(at, &word, sizeof word);
        }
        at += channels * sizeof(Sample);
    }
}

} // namespace

void storeSamples(FileType type, std::span<const int32_t> samples, unsigned shift, uint8_t *at, size_t channels)
{
    switch (type) {
    case FileType::Signed8: return store<int8_t, false>(samples, shift, at, channels);
    case FileType::Unsigned8: return store<uint8_t, false>(samples, shift, at, channels);
    case FileType::Signed16BigEndian: return store<int16_t, true>(samples, shift, at, channels);
    case FileType::Unsigned16BigEndian: return store<uint16_t, true>(samples, shift, at, channels);
    case FileType::Signed16LittleEndian: return store<int16_t, false>(samples, shift, at, channels);
    case FileType::Unsigned16LittleEndian: return store<uint16_t, false>(samples, shift, at, channels);
    }
}

void loadSamples(FileType type, const uint8_t *at, size_t channels, std::span<int32_t> samples)
{
    if (type == FileType::Unsigned8) {
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = at[i * channels];
        return;
    }
    for (size_t i = 0; i < samples.size(); ++i) {
        const uint8_t *const sample = at + i * channels * 2;
        samples[i] = static_cast<int16_t>(sample[0] | sample[1] << 8);
    }
}

} // namespace nurv::shorten
