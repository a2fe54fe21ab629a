// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/LibAvSamples.h"

#include "audio/LibAv.h"

#include <bit>
#include <type_traits>

namespace nurv::libAvSamples {

namespace {

template<typename Sample>
std::int32_t widen(Sample sample)
{
    if constexpr (std::is_same_v<Sample, float>)
        return std::bit_cast<std::int32_t>(sample);
    else if constexpr (std::is_same_v<Sample, std::uint8_t>)
        return static_cast<std::int32_t>((sample ^ 0x80U) << 24);
    else
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(sample) << (32 - 8 * sizeof(Sample)));
}

template<typename Sample>
void copy(const AVFrame &block, std::int32_t *samples)
{
    const auto frames = static_cast<std::size_t>(block.nb_samples);
    const auto channels = static_cast<std::size_t>(block.ch_layout.nb_channels);
    if (av_sample_fmt_is_planar(static_cast<AVSampleFormat>(block.format)) == 0) {
        const auto *from = reinterpret_cast<const Sample *>(block.extended_data[0]);
        for (std::size_t i = 0; i < frames * channels; ++i)
            samples[i] = widen(from[i]);
        return;
    }
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto *from = reinterpret_cast<const Sample *>(block.extended_data[channel]);
        for (std::size_t frame = 0; frame < frames; ++frame)
            samples[frame * channels + channel] = widen(from[frame]);
    }
}

} // namespace

bool interleave(const AVFrame &block, std::vector<std::int32_t> &samples)
{
    samples.resize(static_cast<std::size_t>(block.nb_samples) * static_cast<std::size_t>(block.ch_layout.nb_channels));
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(block.format))) {
    case AV_SAMPLE_FMT_U8: copy<std::uint8_t>(block, samples.data()); return true;
    case AV_SAMPLE_FMT_S16: copy<std::int16_t>(block, samples.data()); return true;
    case AV_SAMPLE_FMT_S32: copy<std::int32_t>(block, samples.data()); return true;
    case AV_SAMPLE_FMT_FLT: copy<float>(block, samples.data()); return true;
    default: return false;
    }
}

} // namespace nurv::libAvSamples
