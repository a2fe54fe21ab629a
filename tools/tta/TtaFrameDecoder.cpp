// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaFrameDecoder.h"

#include "tta/TtaChannels.h"
#include "tta/TtaFilter.h"
#include "tta/TtaSample.h"

#include <array>

namespace nurv {

namespace {

/// `Channels` is 0 where only the running program knows their number.
template<int BytesPerSample, unsigned Channels>
[[gnu::always_inline]] inline TtaFrameDecoder::Ending decodeSamples(TtaBitReader &reader, std::span<uint8_t> pcm, unsigned channelCount)
{
    constexpr unsigned kRoom = Channels != 0 ? Channels : TtaHeader::kMaxChannels;
    const unsigned count = Channels != 0 ? Channels : channelCount;
    std::array<TtaPredictors<BytesPerSample>, kRoom> predictors;
    std::array<TtaRice, kRoom> rice;
    std::array<int32_t, kRoom> samples;

    TtaBitReader::Position position = reader.begin();
    uint8_t *const end = pcm.data() + pcm.size();
    for (uint8_t *at = pcm.data(); at != end;) {
        forEachChannel<Channels>(
            count, [&](unsigned c) __attribute__((always_inline)) {
                const int32_t error = position.readCode(reader, rice[c]);
                auto &[fixed, filter] = predictors[c];
                const int32_t residual = filter.predict() + error;
                filter.learn(residual, error);
                fixed.previous = residual + fixed.prediction();
                samples[c] = fixed.previous;
            });
        if (count > 1) {
            samples[count - 1] += samples[count - 2] / 2;
            for (unsigned c = count - 1; c-- > 0;)
                samples[c] = samples[c + 1] - samples[c];
        }
        for (unsigned c = 0; c < count; ++c, at += BytesPerSample)
            TtaSample<BytesPerSample>::store(at, samples[c]);
    }
    using enum TtaFrameDecoder::Ending;
    if (!reader.isWithinFrame(position))
        return BeforeSamples;
    return reader.holdsMore(position) ? BehindSamples : WithSamples;
}

template<int BytesPerSample, unsigned Channels>
TtaFrameDecoder::Ending decodeBaseline(TtaBitReader &reader, std::span<uint8_t> pcm, unsigned channels)
{
    return decodeSamples<BytesPerSample, Channels>(reader, pcm, channels);
}

template<int BytesPerSample, unsigned Channels>
NURV_TTA_AVX2 TtaFrameDecoder::Ending decodeAvx2(TtaBitReader &reader, std::span<uint8_t> pcm, unsigned channels)
{
    return decodeSamples<BytesPerSample, Channels>(reader, pcm, channels);
}

/// The loop for one, two or more channels.
template<int BytesPerSample>
auto loopFor(unsigned channels, TtaCpu cpu)
{
    if (cpu == TtaCpu::Avx2)
        return channels == 1   ? decodeAvx2<BytesPerSample, 1>
               : channels == 2 ? decodeAvx2<BytesPerSample, 2>
                               : decodeAvx2<BytesPerSample, 0>;
    return channels == 1   ? decodeBaseline<BytesPerSample, 1>
           : channels == 2 ? decodeBaseline<BytesPerSample, 2>
                           : decodeBaseline<BytesPerSample, 0>;
}

} // namespace

TtaFrameDecoder::TtaFrameDecoder(const TtaHeader &header, TtaCpu cpu) : m_channels(header.channels)
{
    switch (header.bytesPerSample()) {
    case 1: m_loop = loopFor<1>(m_channels, cpu); break;
    case 2: m_loop = loopFor<2>(m_channels, cpu); break;
    default: m_loop = loopFor<3>(m_channels, cpu); break;
    }
}

TtaFrameDecoder::Ending TtaFrameDecoder::decode(TtaBitReader &reader, std::span<uint8_t> pcm) const
{
    try {
        return m_loop(reader, pcm, m_channels);
    } catch (const TtaFrameOverrun &) {
        return Ending::BeforeSamples;
    }
}

} // namespace nurv
