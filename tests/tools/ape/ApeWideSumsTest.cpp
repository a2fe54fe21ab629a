// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Frames whose encoder summed in 64 bits, as some did under the same version number.
#include "ape/ApeError.h"
#include "ape/ApeFrameDecoder.h"
#include "ape/ApeFrameEncoder.h"
#include "ape/ApeFrameLoops.h"
#include "ape/ApePlainFilter.h"
#include "ApeSounds.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

constexpr PcmShape k24Bits{.bits = 24};
constexpr size_t kBlocks = 8000;

/// A frame of level 2000 by an encoder with 64-bit sums.
std::vector<uint8_t> wideFrame(const std::vector<int32_t> &samples)
{
    using Chain = FilterChain<PlainFilter<16, 11>>;
    std::vector<uint8_t> frame(samples.size() * kApeMaxBytesPerSample + 64);
    const uint32_t crc = apeFrameCrc(bytesOf(pcmOf(samples, k24Bits)));
    for (int i = 0; i < 4; ++i)
        frame[static_cast<size_t>(i)] = static_cast<uint8_t>(crc >> (24 - 8 * i));
    ApeRangeEncoder coder(frame.data() + 4);
    Channel<Chain> differences;
    Channel<Chain> middles;
    ChannelInUse difference(differences);
    ChannelInUse middle(middles);
    int32_t lastX = 0;
    for (size_t i = 0; i < samples.size(); i += 2) {
        const int32_t y = samples[i + 1] - samples[i];
        const int32_t x = samples[i] + y / 2;
        difference.encode<true, ApeSums::Wide>(coder, y, lastX);
        middle.encode<true, ApeSums::Wide>(coder, x, y);
        lastX = x;
    }
    frame.resize(static_cast<size_t>(finishRangeEncoder(coder) - frame.data()));
    return frame;
}

std::vector<uint8_t> padded(std::span<const uint8_t> frame)
{
    std::vector<uint8_t> bytes(frame.begin(), frame.end());
    bytes.resize(frame.size() + ApeFrameDecoder::kPaddingBytes);
    return bytes;
}

bool decodesTo(ApeFrameDecoder &decoder, std::span<const uint8_t> frame, const QByteArray &pcm)
{
    const std::vector<uint8_t> bytes = padded(frame);
    return std::ranges::equal(decoder.decode(std::span(bytes).first(frame.size()), kBlocks), bytesOf(pcm));
}

TEST(ApeWideSums, AreFoundByTheChecksumAndKeptForTheNextFrames)
{
    const std::vector<int32_t> samples = makeSamples(Sound::Noise, k24Bits, kBlocks);
    const QByteArray pcm = pcmOf(samples, k24Bits);
    ApeFrameEncoder encoder(ApeLevel::Normal, 24, 2);
    const std::span<const uint8_t> wrapping = encoder.encode(bytesOf(pcm));
    const std::vector<uint8_t> wide = wideFrame(samples);
    ASSERT_FALSE(std::ranges::equal(wide, wrapping)); // the sums do overflow
    for (const ApeInstructionSet set : {ApeInstructionSet::Plain, bestInstructionSet()}) {
        ApeFrameDecoder decoder(ApeLevel::Normal, 24, 2, set);
        EXPECT_TRUE(decodesTo(decoder, wrapping, pcm));
        EXPECT_TRUE(decodesTo(decoder, wide, pcm));
        EXPECT_TRUE(decodesTo(decoder, wide, pcm));
        EXPECT_TRUE(decodesTo(decoder, wrapping, pcm));
    }
}

TEST(ApeWideSums, ReportDamageWhenNeitherFits)
{
    std::vector<uint8_t> frame = padded(wideFrame(makeSamples(Sound::Noise, k24Bits, kBlocks)));
    const size_t size = frame.size() - ApeFrameDecoder::kPaddingBytes;
    frame[size / 2] ^= 4;
    ApeFrameDecoder decoder(ApeLevel::Normal, 24, 2);
    EXPECT_THROW((void)decoder.decode(std::span(frame).first(size), kBlocks), ApeError);
}

} // namespace

} // namespace nurv::test
