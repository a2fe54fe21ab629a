// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFrameEncoder.h"

#include "ape/ApePcm.h"

#include <algorithm>
#include <cstring>

namespace nurv {

namespace {

constexpr size_t kBlocksPerPiece = 4096;
constexpr size_t kWordBytes = 4;

void putBigEndian32(uint8_t *at, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        *at++ = static_cast<uint8_t>(value >> shift);
}

} // namespace

ApeFrameEncoder::ApeFrameEncoder(ApeLevel level, unsigned bitsPerSample, unsigned channels, ApeInstructionSet set)
    : m_bitsPerSample(bitsPerSample), m_channels(channels), m_coder(makeApeFrameCoder(level, set)),
      m_samples(kBlocksPerPiece * channels), m_frame(m_samples.size() * kApeMaxBytesPerSample + 3 * kApeRangeCoderSlack)
{
}

std::span<const uint8_t> ApeFrameEncoder::encode(std::span<const uint8_t> pcm,
                                                 const std::function<void(size_t)> &onBlocks)
{
    const uint32_t special = specialCode(pcm);
    const uint32_t crc = apeFrameCrc(pcm);
    size_t headBytes = kWordBytes;
    putBigEndian32(m_frame.data(), special == 0 ? crc : crc | kApeSpecialCodeFollows);
    if (special != 0) {
        putBigEndian32(m_frame.data() + kWordBytes, special);
        headBytes += kWordBytes;
    }
    ApeRangeEncoder coder(m_frame.data() + headBytes);
    if (special == 0 || special == apespecial::kEqualChannels)
        encodeSamples(pcm, m_channels == 1 || special != 0, coder, onBlocks);
    makeRoom(coder, kApeRangeCoderSlack);
    const uint8_t *const end = finishRangeEncoder(coder);
    return std::span<const uint8_t>(m_frame).first(static_cast<size_t>(end - m_frame.data()));
}

bool ApeFrameEncoder::isSilent(std::span<const uint8_t> pcm) const
{
    const uint8_t silence = m_bitsPerSample == 8 ? 128 : 0;
    return std::ranges::all_of(pcm, [=](uint8_t byte) { return byte == silence; });
}

bool ApeFrameEncoder::hasEqualChannels(std::span<const uint8_t> pcm) const
{
    const size_t sampleBytes = m_bitsPerSample / 8;
    for (size_t at = 0; at < pcm.size(); at += 2 * sampleBytes) {
        if (std::memcmp(&pcm[at], &pcm[at + sampleBytes], sampleBytes) != 0)
            return false;
    }
    return true;
}

uint32_t ApeFrameEncoder::specialCode(std::span<const uint8_t> pcm) const
{
    const bool isStereo = m_channels == 2;
    if (isSilent(pcm))
        return isStereo ? apespecial::kSilentStereo : apespecial::kSilentMono;
    return isStereo && hasEqualChannels(pcm) ? apespecial::kEqualChannels : 0;
}

void ApeFrameEncoder::encodeSamples(std::span<const uint8_t> pcm, bool asMono, ApeRangeEncoder &coder,
                                    const std::function<void(size_t)> &onBlocks)
{
    const size_t blockBytes = size_t{m_channels} * m_bitsPerSample / 8;
    m_coder->start();
    while (!pcm.empty()) {
        const size_t blocks = std::min(pcm.size() / blockBytes, kBlocksPerPiece);
        readPcm(pcm, m_bitsPerSample, std::span(m_samples).first(blocks * m_channels));
        makeRoom(coder, blocks * m_channels * kApeMaxBytesPerSample + kApeRangeCoderSlack);
        if (!asMono) {
            m_coder->encodeStereo(coder, m_samples.data(), blocks);
        } else {
            for (size_t i = 1; i < blocks && m_channels == 2; ++i)
                m_samples[i] = m_samples[2 * i];
            m_coder->encodeMono(coder, m_samples.data(), blocks);
        }
        pcm = pcm.subspan(blocks * blockBytes);
        if (onBlocks)
            onBlocks(blocks);
    }
}

void ApeFrameEncoder::makeRoom(ApeRangeEncoder &coder, size_t bytes)
{
    const auto used = static_cast<size_t>(coder.next - m_frame.data());
    if (m_frame.size() - used >= bytes)
        return;
    m_frame.resize(std::max(used + bytes, m_frame.size() + m_frame.size() / 2));
    coder.next = m_frame.data() + used;
}

} // namespace nurv
