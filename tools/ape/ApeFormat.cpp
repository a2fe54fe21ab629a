// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFormat.h"

#include "support/Bytes.h"
#include "support/WaveReader.h"

#include <zlib.h>

#include <algorithm>
#include <string_view>

namespace nurv {

namespace {

constexpr std::string_view kIdentifier = "MAC ";
constexpr uint32_t kBlocksPerFrame = 73728;

} // namespace

std::optional<ApeLevel> apeLevelFromNumber(uint32_t number)
{
    switch (number) {
    case 1000: return ApeLevel::Fast;
    case 2000: return ApeLevel::Normal;
    case 3000: return ApeLevel::High;
    case 4000: return ApeLevel::ExtraHigh;
    case 5000: return ApeLevel::Insane;
    default: return std::nullopt;
    }
}

uint32_t apeBlocksPerFrame(ApeLevel level)
{
    switch (level) {
    case ApeLevel::ExtraHigh: return kBlocksPerFrame * 4;
    case ApeLevel::Insane: return kBlocksPerFrame * 16;
    default: return kBlocksPerFrame;
    }
}

ApeDescriptor ApeDescriptor::read(std::span<const uint8_t, kApeDescriptorBytes> bytes)
{
    const uint8_t *const at = bytes.data();
    ApeDescriptor descriptor;
    descriptor.version = littleEndian16(at + 4);
    descriptor.descriptorBytes = littleEndian32(at + 8);
    descriptor.headerBytes = littleEndian32(at + 12);
    descriptor.seekTableBytes = littleEndian32(at + 16);
    descriptor.storedHeaderBytes = littleEndian32(at + 20);
    descriptor.frameDataBytes = littleEndian32(at + 24) | uint64_t{littleEndian32(at + 28)} << 32;
    descriptor.storedTrailingBytes = littleEndian32(at + 32);
    std::copy_n(at + 36, descriptor.md5.size(), descriptor.md5.begin());
    return descriptor;
}

void ApeDescriptor::write(std::span<uint8_t, kApeDescriptorBytes> bytes) const
{
    uint8_t *const at = bytes.data();
    std::copy(kIdentifier.begin(), kIdentifier.end(), at);
    putLittleEndian16(at + 4, version);
    putLittleEndian16(at + 6, 0);
    putLittleEndian32(at + 8, descriptorBytes);
    putLittleEndian32(at + 12, headerBytes);
    putLittleEndian32(at + 16, seekTableBytes);
    putLittleEndian32(at + 20, storedHeaderBytes);
    putLittleEndian32(at + 24, static_cast<uint32_t>(frameDataBytes));
    putLittleEndian32(at + 28, static_cast<uint32_t>(frameDataBytes >> 32));
    putLittleEndian32(at + 32, storedTrailingBytes);
    std::ranges::copy(md5, at + 36);
}

ApeHeader ApeHeader::read(std::span<const uint8_t, kApeHeaderBytes> bytes)
{
    const uint8_t *const at = bytes.data();
    ApeHeader header;
    header.level = littleEndian16(at);
    header.formatFlags = littleEndian16(at + 2);
    header.blocksPerFrame = littleEndian32(at + 4);
    header.finalFrameBlocks = littleEndian32(at + 8);
    header.totalFrames = littleEndian32(at + 12);
    header.bitsPerSample = littleEndian16(at + 16);
    header.channels = littleEndian16(at + 18);
    header.sampleRateHz = littleEndian32(at + 20);
    return header;
}

void ApeHeader::write(std::span<uint8_t, kApeHeaderBytes> bytes) const
{
    uint8_t *const at = bytes.data();
    putLittleEndian16(at, level);
    putLittleEndian16(at + 2, formatFlags);
    putLittleEndian32(at + 4, blocksPerFrame);
    putLittleEndian32(at + 8, finalFrameBlocks);
    putLittleEndian32(at + 12, totalFrames);
    putLittleEndian16(at + 16, bitsPerSample);
    putLittleEndian16(at + 18, channels);
    putLittleEndian32(at + 20, sampleRateHz);
}

uint64_t ApeHeader::totalBlocks() const
{
    return totalFrames == 0 ? 0 : uint64_t{totalFrames - 1} * blocksPerFrame + finalFrameBlocks;
}

uint32_t ApeHeader::blocksOfFrame(uint32_t frame) const
{
    return frame + 1 == totalFrames ? finalFrameBlocks : blocksPerFrame;
}

uint32_t apeFrameCrc(std::span<const uint8_t> pcm)
{
    return static_cast<uint32_t>(::crc32_z(0, pcm.data(), pcm.size())) >> 1;
}

std::vector<uint8_t> apeWaveHeader(const ApeHeader &header, uint64_t pcmBytes)
{
    return canonicalWaveHeader({header.channels, header.sampleRateHz, header.bitsPerSample}, pcmBytes);
}

} // namespace nurv
