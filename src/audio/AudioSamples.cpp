// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/AudioSamples.h"

#include "audio/LibAv.h"

#include <QtEndian>

#include <cmath>
#include <type_traits>
#include <utility>

namespace nurv::audioSamples {

namespace {

constexpr int kWidest = 32;

/// A decoded sample in the high bits of 32.
template<typename Sample, int Bytes>
std::int32_t widen(Sample sample)
{
    if constexpr (std::is_floating_point_v<Sample>) {
        constexpr int kBits = 8 * Bytes;
        constexpr double kFullScale = static_cast<double>(std::int64_t{1} << (kBits - 1));
        const double scaled = std::rint(static_cast<double>(sample) * kFullScale);
        const double limited = scaled >= kFullScale - 1.0 ? kFullScale - 1.0
                               : scaled > -kFullScale     ? scaled
                                                          : -kFullScale;
        const std::int64_t whole = std::isnan(scaled) ? 0 : static_cast<std::int64_t>(limited);
        return static_cast<std::int32_t>(whole * (std::int64_t{1} << (kWidest - kBits)));
    } else if constexpr (std::is_unsigned_v<Sample>) {
        return static_cast<std::int32_t>((static_cast<std::uint32_t>(sample) ^ 0x80U) << 24);
    } else {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(sample)
                                         << (kWidest - 8 * static_cast<int>(sizeof(Sample))));
    }
}

template<int Bytes>
void store(std::int32_t sample, std::uint8_t *to)
{
    const auto bits = static_cast<std::uint32_t>(sample);
    for (int i = 0; i < Bytes; ++i)
        to[i] = static_cast<std::uint8_t>(bits >> (24 - 8 * i));
}

template<int Bytes>
std::int32_t load(const std::uint8_t *from)
{
    std::uint32_t bits = 0;
    for (int i = 0; i < Bytes; ++i)
        bits |= static_cast<std::uint32_t>(from[i]) << (24 - 8 * i);
    return static_cast<std::int32_t>(bits);
}

template<typename Sample, int Bytes>
void pack(const AVFrame &block, bool isPlanar, int firstFrame, int frames, std::uint8_t *client)
{
    const int channels = block.ch_layout.nb_channels;
    for (int channel = 0; channel < channels; ++channel) {
        const auto *from = reinterpret_cast<const Sample *>(block.extended_data[isPlanar ? channel : 0]);
        from += isPlanar ? firstFrame : std::ptrdiff_t{firstFrame} * channels + channel;
        const int step = isPlanar ? 1 : channels;
        std::uint8_t *to = client + channel * Bytes;
        for (int frame = 0; frame < frames; ++frame) {
            store<Bytes>(widen<Sample, Bytes>(*from), to);
            from += step;
            to += channels * Bytes;
        }
    }
}

template<typename Sample, int Bytes>
void unpack(const std::uint8_t *client, int frames, AVFrame &block, int firstFrame)
{
    const int channels = block.ch_layout.nb_channels;
    for (int channel = 0; channel < channels; ++channel) {
        auto *to = reinterpret_cast<Sample *>(block.extended_data[channel]) + firstFrame;
        const std::uint8_t *from = client + channel * Bytes;
        for (int frame = 0; frame < frames; ++frame) {
            const std::int32_t sample = load<Bytes>(from);
            if constexpr (std::is_floating_point_v<Sample>)
                *to++ = static_cast<Sample>(sample) / Sample{2147483648.0F};
            else
                *to++ = static_cast<Sample>(sample >> (kWidest - 8 * static_cast<int>(sizeof(Sample))));
            from += channels * Bytes;
        }
    }
}

/// Calls `work` with the width as a constant.
template<typename Work>
bool withWidth(int bytesPerSample, Work &&work)
{
    switch (bytesPerSample) {
    case 1: work(std::integral_constant<int, 1>()); return true;
    case 2: work(std::integral_constant<int, 2>()); return true;
    case 3: work(std::integral_constant<int, 3>()); return true;
    case 4: work(std::integral_constant<int, 4>()); return true;
    default: return false;
    }
}

template<typename Sample>
bool packAs(const AVFrame &block, int firstFrame, int frames, int bytesPerSample, std::uint8_t *client)
{
    const bool isPlanar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(block.format)) != 0;
    return withWidth(bytesPerSample, [&](auto width) {
        pack<Sample, decltype(width)::value>(block, isPlanar, firstFrame, frames, client);
    });
}

template<typename Sample>
bool unpackAs(const std::uint8_t *client, int frames, int bytesPerSample, AVFrame &block, int firstFrame)
{
    return withWidth(bytesPerSample,
                     [&](auto width) { unpack<Sample, decltype(width)::value>(client, frames, block, firstFrame); });
}

template<typename Word>
void swapWords(std::uint8_t *samples, std::size_t byteCount)
{
    qbswap<sizeof(Word)>(samples, static_cast<qsizetype>(byteCount / sizeof(Word)), samples);
}

} // namespace

bool toClient(const AVFrame &block, int firstFrame, int frames, int bytesPerSample, std::uint8_t *client)
{
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(block.format))) {
    case AV_SAMPLE_FMT_U8: return packAs<std::uint8_t>(block, firstFrame, frames, bytesPerSample, client);
    case AV_SAMPLE_FMT_S16: return packAs<std::int16_t>(block, firstFrame, frames, bytesPerSample, client);
    case AV_SAMPLE_FMT_S32: return packAs<std::int32_t>(block, firstFrame, frames, bytesPerSample, client);
    case AV_SAMPLE_FMT_FLT: return packAs<float>(block, firstFrame, frames, bytesPerSample, client);
    case AV_SAMPLE_FMT_DBL: return packAs<double>(block, firstFrame, frames, bytesPerSample, client);
    default: return false;
    }
}

bool fromClient(const std::uint8_t *client, int frames, int bytesPerSample, AVFrame &block, int firstFrame)
{
    switch (block.format) {
    case AV_SAMPLE_FMT_S16P: return unpackAs<std::int16_t>(client, frames, bytesPerSample, block, firstFrame);
    case AV_SAMPLE_FMT_S32P: return unpackAs<std::int32_t>(client, frames, bytesPerSample, block, firstFrame);
    case AV_SAMPLE_FMT_FLTP: return unpackAs<float>(client, frames, bytesPerSample, block, firstFrame);
    default: return false;
    }
}

void swapBytes(std::uint8_t *samples, std::size_t byteCount, int bytesPerSample)
{
    switch (bytesPerSample) {
    case 2: swapWords<std::uint16_t>(samples, byteCount); break;
    case 3:
        for (std::size_t i = 0; i + 2 < byteCount; i += 3)
            std::swap(samples[i], samples[i + 2]);
        break;
    case 4: swapWords<std::uint32_t>(samples, byteCount); break;
    default: break;
    }
}

void toggleSign(std::uint8_t *samples, std::size_t byteCount)
{
    for (std::size_t i = 0; i < byteCount; ++i)
        samples[i] ^= 0x80U;
}

} // namespace nurv::audioSamples
