// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DiscSamples.h"

#include <array>
#include <cstddef>
#include <stdexcept>

namespace nurv {

namespace {

/// For each byte of a unit on the disc the place in the unit of a WAV file.
template<size_t Channels, size_t Bytes>
constexpr std::array<uint8_t, 2 * Channels * Bytes> placesOfUnit()
{
    // The groups of six channels: centre and LFE, then the corners. The order of a file is L R C LFE Ls Rs.
    constexpr std::array<size_t, 6> kSix{2, 3, 0, 1, 4, 5};
    constexpr size_t kGroup2 = Channels == 6 ? 2 : 0;
    std::array<uint8_t, 2 * Channels * Bytes> places{};
    size_t next = 0;
    const auto add = [&](size_t frame, size_t channel, size_t byte) {
        const size_t inFile = Channels == 6 ? kSix[channel] : channel;
        places[next++] = static_cast<uint8_t>((frame * Channels + inFile) * Bytes + byte);
    };
    const auto addGroup = [&](size_t begin, size_t end) {
        for (size_t frame = 0; frame < 2; ++frame) {
            for (size_t channel = begin; channel < end; ++channel) {
                add(frame, channel, Bytes - 1);
                add(frame, channel, Bytes - 2);
            }
        }
        for (size_t frame = 0; frame < 2 && Bytes == 3; ++frame) {
            for (size_t channel = begin; channel < end; ++channel)
                add(frame, channel, 0);
        }
    };
    addGroup(0, kGroup2);
    addGroup(kGroup2, Channels);
    return places;
}

template<size_t Channels, size_t Bytes>
void putUnits(const uint8_t *pcm, size_t count, uint8_t *out)
{
    static constexpr auto kPlaces = placesOfUnit<Channels, Bytes>();
    for (const uint8_t *end = pcm + count; pcm != end; pcm += kPlaces.size(), out += kPlaces.size()) {
#pragma GCC unroll 36
        for (size_t i = 0; i < kPlaces.size(); ++i)
            out[i] = pcm[kPlaces[i]];
    }
}

} // namespace

void putDiscSamples(const DvdAudioFormat &format, std::span<const uint8_t> pcm, uint8_t *out)
{
    const bool isDeep = format.bitsPerSample == 24;
    if (pcm.size() % (size_t{2} * format.bytesPerFrame()) != 0)
        throw std::logic_error("a pack holds whole units");
    switch (format.channels) {
    case 1: isDeep ? putUnits<1, 3>(pcm.data(), pcm.size(), out) : putUnits<1, 2>(pcm.data(), pcm.size(), out); break;
    case 2: isDeep ? putUnits<2, 3>(pcm.data(), pcm.size(), out) : putUnits<2, 2>(pcm.data(), pcm.size(), out); break;
    case 6: isDeep ? putUnits<6, 3>(pcm.data(), pcm.size(), out) : putUnits<6, 2>(pcm.data(), pcm.size(), out); break;
    default: throw std::logic_error("a disc has no such sound");
    }
}

} // namespace nurv
