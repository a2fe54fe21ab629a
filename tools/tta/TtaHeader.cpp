// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaHeader.h"

#include "support/Bytes.h"
#include "support/ToolError.h"
#include "tta/TtaCrc.h"

#include <algorithm>
#include <string>

namespace nurv {

namespace {

constexpr std::array<uint8_t, 4> kMagic = {'T', 'T', 'A', '1'};
constexpr uint16_t kPlainPcm = 1;
constexpr uint16_t kEncrypted = 2;
constexpr size_t kCrcOffset = TtaHeader::kByteCount - 4;

[[noreturn]] void unsupported(const std::string &text)
{
    throw ToolError(ToolError::Kind::UnsupportedFormat, text);
}

} // namespace

uint32_t TtaHeader::frameLength() const
{
    return static_cast<uint32_t>(uint64_t{256} * sampleRateHz / 245);
}

uint64_t TtaHeader::frameCount() const
{
    return (uint64_t{sampleCount} + frameLength() - 1) / frameLength();
}

uint32_t TtaHeader::samplesInFrame(uint64_t frame) const
{
    const uint64_t start = frame * frameLength();
    return static_cast<uint32_t>(std::min<uint64_t>(frameLength(), sampleCount - start));
}

void TtaHeader::check() const
{
    if (channels < 1 || channels > kMaxChannels)
        unsupported(std::to_string(channels) + " channels are not supported, only 1 to 6");
    if (bitsPerSample != 8 && bitsPerSample != 16 && bitsPerSample != 24)
        unsupported(std::to_string(bitsPerSample) + " bits per sample are not supported, only 8, 16 and 24");
    if (sampleRateHz < 1 || sampleRateHz > kMaxSampleRateHz)
        unsupported("a sample rate of " + std::to_string(sampleRateHz) + " Hz is not supported");
    if (frameCount() > kMaxFrames)
        unsupported("too long for a sample rate of " + std::to_string(sampleRateHz) + " Hz");
}

std::array<uint8_t, TtaHeader::kByteCount> TtaHeader::toBytes() const
{
    std::array<uint8_t, kByteCount> bytes{};
    std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
    putLittleEndian16(&bytes[4], kPlainPcm);
    putLittleEndian16(&bytes[6], channels);
    putLittleEndian16(&bytes[8], bitsPerSample);
    putLittleEndian32(&bytes[10], sampleRateHz);
    putLittleEndian32(&bytes[14], sampleCount);
    putLittleEndian32(&bytes[kCrcOffset], ttaCrc(std::span(bytes).first(kCrcOffset)));
    return bytes;
}

TtaHeader TtaHeader::fromBytes(std::span<const uint8_t, kByteCount> bytes, Crc crc)
{
    if (!std::equal(kMagic.begin(), kMagic.end(), bytes.begin()))
        throw ToolError(ToolError::Kind::InvalidInput, "not a TTA1 file");
    if (crc == Crc::Checked && ttaCrc(bytes.first(kCrcOffset)) != littleEndian32(&bytes[kCrcOffset]))
        throw ToolError(ToolError::Kind::Damaged, "the header is damaged: its CRC does not match");
    const uint16_t format = littleEndian16(&bytes[4]);
    if (format == kEncrypted)
        unsupported("the file is encrypted with a password, which is not supported");
    if (format != kPlainPcm)
        unsupported("audio format " + std::to_string(format) + " is not supported, only integer PCM");
    TtaHeader header;
    header.channels = littleEndian16(&bytes[6]);
    header.bitsPerSample = littleEndian16(&bytes[8]);
    header.sampleRateHz = littleEndian32(&bytes[10]);
    header.sampleCount = littleEndian32(&bytes[14]);
    header.check();
    return header;
}

} // namespace nurv
