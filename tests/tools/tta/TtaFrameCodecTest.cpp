// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaFrameDecoder.h"
#include "tta/TtaFrameEncoder.h"
#include "TtaSounds.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nurv::test {

namespace {

constexpr Sound kSounds[] = {Sound::Silence, Sound::Square, Sound::Noise, Sound::FullScale, Sound::Sweep, Sound::Music};

std::vector<uint8_t> encoded(const std::vector<uint8_t> &pcm, const TtaHeader &shape, TtaCpu cpu)
{
    std::vector<uint8_t> bytes;
    TtaBitWriter writer([&](std::span<const uint8_t> piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    TtaFrameEncoder(shape, cpu).encode(writer, pcm);
    return bytes;
}

std::vector<uint8_t> decoded(const std::vector<uint8_t> &bytes, const TtaHeader &shape, TtaCpu cpu)
{
    size_t at = 0;
    TtaBitReader reader([&](std::span<uint8_t> piece) {
        const size_t size = std::min(piece.size(), bytes.size() - at);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, piece.begin());
        at += size;
        return size;
    });
    std::vector<uint8_t> pcm(shape.pcmByteCount());
    EXPECT_EQ(TtaFrameDecoder(shape, cpu).decode(reader, pcm), TtaFrameDecoder::Ending::WithSamples);
    return pcm;
}

/// Frame by frame of the shapes: channels, bits.
class TtaFrameCodec : public ::testing::TestWithParam<std::tuple<unsigned, unsigned>> {};

TEST_P(TtaFrameCodec, GivesEverySampleBackOnEveryProcessor)
{
    const auto [channels, bits] = GetParam();
    for (const Sound sound : kSounds) {
        const TtaHeader shape = shapeOf(channels, bits, 9001);
        const std::vector<uint8_t> pcm = makePcm(sound, shape);
        const std::vector<uint8_t> baseline = encoded(pcm, shape, TtaCpu::Baseline);
        EXPECT_TRUE(decoded(baseline, shape, TtaCpu::Baseline) == pcm) << static_cast<int>(sound);
        EXPECT_TRUE(encoded(pcm, shape, bestTtaCpu()) == baseline) << static_cast<int>(sound);
        EXPECT_TRUE(decoded(baseline, shape, bestTtaCpu()) == pcm) << static_cast<int>(sound);
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, TtaFrameCodec,
                         ::testing::Combine(::testing::Values(1U, 2U, 3U, 4U, 5U, 6U),
                                            ::testing::Values(8U, 16U, 24U)));

TEST(TtaFrame, WritesTheFrameThatAnotherEncoderWrites)
{
    // (100, -100) (32767, -32768) (0, 7), without the CRC.
    const QByteArray pcm = QByteArray::fromHex("64009cffff7f008000000700");
    const std::vector<uint8_t> samples(pcm.begin(), pcm.end());
    const TtaHeader shape = shapeOf(2, 16, 3);
    const QByteArray known = QByteArray::fromHex("2003c0ffffffffffffffffffffffffffffff3f4108f8ffffffffffffff355002");
    EXPECT_EQ(toQt(encoded(samples, shape, TtaCpu::Baseline)).toHex(), known.toHex());
    EXPECT_EQ(toQt(encoded(samples, shape, bestTtaCpu())).toHex(), known.toHex());
}

TEST(TtaFrame, SaysSoWhenAFrameEndsBeforeItsSamples)
{
    const TtaHeader shape = shapeOf(2, 16, 1000);
    std::vector<uint8_t> bytes = encoded(makePcm(Sound::Noise, shape), shape, bestTtaCpu());
    bytes.resize(bytes.size() / 2);
    size_t at = 0;
    TtaBitReader reader([&](std::span<uint8_t> piece) {
        const size_t size = std::min(piece.size(), bytes.size() - at);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, piece.begin());
        at += size;
        return size;
    });
    std::vector<uint8_t> pcm(shape.pcmByteCount());
    EXPECT_EQ(TtaFrameDecoder(shape).decode(reader, pcm), TtaFrameDecoder::Ending::BeforeSamples);
}

} // namespace

} // namespace nurv::test
