// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFrameDecoder.h"

#include "ape/ApeError.h"
#include "ape/ApePcm.h"

#include <algorithm>

namespace nurv {

namespace {

constexpr size_t kWordBytes = 4;

uint32_t bigEndian32(const uint8_t *at)
{
    return uint32_t{at[0]} << 24 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 8 | at[3];
}

[[noreturn]] void failFrame(const std::string &why)
{
    throw ApeError(ApeErrorNumber::Decompressing, why);
}

} // namespace

ApeFrameDecoder::ApeFrameDecoder(ApeLevel level, unsigned bitsPerSample, unsigned channels, ApeInstructionSet set)
    : m_bitsPerSample(bitsPerSample), m_channels(channels), m_coder(makeApeFrameCoder(level, set)),
      m_samples(kBlocksPerPiece * channels)
{
}

std::span<const uint8_t> ApeFrameDecoder::decode(std::span<const uint8_t> frame, size_t blocks,
                                                 const std::function<void(size_t)> &onBlocks)
{
    const Head head = readHead(frame);
    m_pcm.resize(blocks * m_channels * m_bitsPerSample / 8);
    if (isSilent(head.special)) {
        std::ranges::fill(m_pcm, m_bitsPerSample == 8 ? uint8_t{128} : uint8_t{0});
        check(head.crc);
        if (onBlocks)
            onBlocks(blocks);
        return m_pcm;
    }
    const std::span<const uint8_t> coded = frame.subspan(head.bytes);
    const bool asMono = m_channels == 1 || (head.special & apespecial::kEqualChannels) != 0;
    try {
        decodeSamples(coded, asMono, m_sums, onBlocks);
        check(head.crc);
    } catch (const ApeError &) {
        if (m_bitsPerSample != 24)
            throw;
        // Nothing in the file tells with which sums it was made.
        m_sums = m_sums == ApeSums::Wide ? ApeSums::Wrapping : ApeSums::Wide;
        decodeSamples(coded, asMono, m_sums, {});
        check(head.crc);
    }
    return m_pcm;
}

ApeFrameDecoder::Head ApeFrameDecoder::readHead(std::span<const uint8_t> frame)
{
    Head head{.bytes = kWordBytes};
    if (frame.size() < kWordBytes)
        failFrame("it is too short");
    const uint32_t word = bigEndian32(frame.data());
    head.crc = word & ~kApeSpecialCodeFollows;
    if ((word & kApeSpecialCodeFollows) != 0) {
        if (frame.size() < 2 * kWordBytes)
            failFrame("it is too short");
        head.special = bigEndian32(frame.data() + kWordBytes);
        head.bytes += kWordBytes;
    }
    return head;
}

bool ApeFrameDecoder::isSilent(uint32_t special) const
{
    const uint32_t silent = m_channels == 2 ? apespecial::kSilentStereo : apespecial::kSilentMono;
    return (special & silent) == silent;
}

void ApeFrameDecoder::decodeSamples(std::span<const uint8_t> coded, bool asMono, ApeSums sums,
                                    const std::function<void(size_t)> &onBlocks)
{
    const size_t blockBytes = size_t{m_channels} * m_bitsPerSample / 8;
    ApeRangeDecoder coder(coded.data());
    m_coder->start();
    std::span<uint8_t> pcm = m_pcm;
    while (!pcm.empty()) {
        const size_t blocks = std::min(pcm.size() / blockBytes, kBlocksPerPiece);
        if (asMono)
            m_coder->decodeMono(coder, m_samples.data(), blocks, sums);
        else
            m_coder->decodeStereo(coder, m_samples.data(), blocks, sums);
        if (coder.isCorrupt || coder.end() > coded.data() + coded.size())
            failFrame("its coded samples are damaged");
        for (size_t i = blocks; i-- > 0 && asMono && m_channels == 2;)
            m_samples[2 * i] = m_samples[2 * i + 1] = m_samples[i];
        writePcm(std::span(m_samples).first(blocks * m_channels), m_bitsPerSample, pcm);
        pcm = pcm.subspan(blocks * blockBytes);
        if (onBlocks)
            onBlocks(blocks);
    }
}

void ApeFrameDecoder::check(uint32_t crc) const
{
    if (apeFrameCrc(m_pcm) != crc)
        throw ApeError(ApeErrorNumber::InvalidChecksum, "its checksum does not match its samples");
}

} // namespace nurv
