// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaFrameEncoder.h"

#include "tta/TtaChannels.h"
#include "tta/TtaFilter.h"
#include "tta/TtaSample.h"

#include <array>

namespace nurv {

namespace {

/// `Channels` is 0 where only the running program knows their number.
template<int BytesPerSample, unsigned Channels>
[[gnu::always_inline]] inline void encodeSamples(TtaBitWriter &writer, std::span<const uint8_t> pcm,
                                                 unsigned channelCount)
{
    constexpr unsigned kRoom = Channels != 0 ? Channels : TtaHeader::kMaxChannels;
    const unsigned count = Channels != 0 ? Channels : channelCount;
    std::array<TtaPredictors<BytesPerSample>, kRoom> predictors;
    std::array<TtaRice, kRoom> rice;
    std::array<int32_t, kRoom> samples;

    TtaBitWriter::Position position = writer.begin();
    const uint8_t *const end = pcm.data() + pcm.size();
    for (const uint8_t *at = pcm.data(); at != end;) {
        for (unsigned c = 0; c < count; ++c, at += BytesPerSample)
            samples[c] = TtaSample<BytesPerSample>::load(at);
        if (count > 1) {
            for (unsigned c = 0; c < count - 1; ++c)
                samples[c] = samples[c + 1] - samples[c];
            samples[count - 1] -= samples[count - 2] / 2;
        }
        forEachChannel<Channels>(
            count, [&](unsigned c) __attribute__((always_inline)) {
                auto &[fixed, filter] = predictors[c];
                const int32_t residual = samples[c] - fixed.prediction();
                fixed.previous = samples[c];
                const int32_t error = residual - filter.predict();
                filter.learn(residual, error);
                position.writeCode(writer, rice[c], error);
            });
    }
    writer.finish(position);
}

template<int BytesPerSample, unsigned Channels>
void encodeBaseline(TtaBitWriter &writer, std::span<const uint8_t> pcm, unsigned channels)
{
    encodeSamples<BytesPerSample, Channels>(writer, pcm, channels);
}

template<int BytesPerSample, unsigned Channels>
NURV_TTA_AVX2 void encodeAvx2(TtaBitWriter &writer, std::span<const uint8_t> pcm, unsigned channels)
{
    encodeSamples<BytesPerSample, Channels>(writer, pcm, channels);
}

/// The loop for one, two or more channels.
template<int BytesPerSample>
auto loopFor(unsigned channels, TtaCpu cpu)
{
    if (cpu == TtaCpu::Avx2)
        return channels == 1   ? encodeAvx2<BytesPerSample, 1>
               : channels == 2 ? encodeAvx2<BytesPerSample, 2>
                               : encodeAvx2<BytesPerSample, 0>;
    return channels == 1   ? encodeBaseline<BytesPerSample, 1>
           : channels == 2 ? encodeBaseline<BytesPerSample, 2>
                           : encodeBaseline<BytesPerSample, 0>;
}

} // namespace

TtaFrameEncoder::TtaFrameEncoder(const TtaHeader &header, TtaCpu cpu) : m_channels(header.channels)
{
    switch (header.bytesPerSample()) {
    case 1: m_loop = loopFor<1>(m_channels, cpu); break;
    case 2: m_loop = loopFor<2>(m_channels, cpu); break;
    default: m_loop = loopFor<3>(m_channels, cpu); break;
    }
}

void TtaFrameEncoder::encode(TtaBitWriter &writer, std::span<const uint8_t> pcm) const
{
    m_loop(writer, pcm, m_channels);
}

} // namespace nurv
