// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/PcmSamples.h"

namespace nurv::pcmSamples {

namespace {

template<int Bytes, bool IsBigEndian>
void widenAs(const std::uint8_t *bytes, std::size_t count, std::uint32_t flipped, std::int32_t *samples)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t bits = 0;
        for (int byte = 0; byte < Bytes; ++byte) {
            const int place = IsBigEndian ? 24 - 8 * byte : 32 - 8 * Bytes + 8 * byte;
            bits |= static_cast<std::uint32_t>(bytes[i * Bytes + static_cast<std::size_t>(byte)]) << place;
        }
        samples[i] = static_cast<std::int32_t>(bits ^ flipped);
    }
}

template<int Bytes>
void widenOrdered(const std::uint8_t *bytes, std::size_t count, const PcmCoding &coding, std::int32_t *samples)
{
    const std::uint32_t flipped = coding.isUnsigned ? 0x80000000U : 0;
    if (coding.isBigEndian)
        widenAs<Bytes, true>(bytes, count, flipped, samples);
    else
        widenAs<Bytes, false>(bytes, count, flipped, samples);
}

template<int Bytes>
void narrowAs(const std::int32_t *samples, std::size_t count, int shift, std::uint8_t *bytes)
{
    for (std::size_t i = 0; i < count; ++i) {
        const auto bits = static_cast<std::uint32_t>(samples[i] >> shift);
        for (int byte = 0; byte < Bytes; ++byte)
            bytes[i * Bytes + static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(bits >> (8 * byte));
    }
}

} // namespace

void widen(const std::uint8_t *bytes, std::size_t count, const PcmCoding &coding, std::int32_t *samples)
{
    switch (coding.bytesPerSample) {
    case 1: widenOrdered<1>(bytes, count, coding, samples); break;
    case 2: widenOrdered<2>(bytes, count, coding, samples); break;
    case 3: widenOrdered<3>(bytes, count, coding, samples); break;
    default: widenOrdered<4>(bytes, count, coding, samples); break;
    }
}

void narrow(const std::int32_t *samples, std::size_t count, int bits, std::uint8_t *bytes)
{
    const int shift = 32 - bits;
    switch ((bits + 7) / 8) {
    case 1: narrowAs<1>(samples, count, shift, bytes); break;
    case 2: narrowAs<2>(samples, count, shift, bytes); break;
    case 3: narrowAs<3>(samples, count, shift, bytes); break;
    default: narrowAs<4>(samples, count, shift, bytes); break;
    }
}

} // namespace nurv::pcmSamples
