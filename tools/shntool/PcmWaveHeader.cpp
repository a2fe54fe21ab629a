// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PcmWaveHeader.h"

#include "shntool/WaveInfo.h"
#include "support/Bytes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace nurv {

namespace {

constexpr uint64_t kMaxSize = std::numeric_limits<uint32_t>::max();
constexpr uint32_t kSizes64Bytes = 28;

/// KSDATAFORMAT_SUBTYPE_PCM.
constexpr std::array<uint8_t, 16> kPcmSubformat{0x01, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

/// The places of speakers that `flac -d` assumes, by the number of channels.
constexpr std::array<uint32_t, 9> kChannelMasks{0, 0x4, 0x3, 0x7, 0x33, 0x607, 0x60F, 0x70F, 0x63F};

class ByteWriter {
public:
    void text(std::string_view text)
    {
        for (const char letter : text)
            m_bytes.push_back(static_cast<uint8_t>(letter));
    }
    void number16(uint16_t value)
    {
        m_bytes.push_back(static_cast<uint8_t>(value));
        m_bytes.push_back(static_cast<uint8_t>(value >> 8));
    }
    void number32(uint64_t value)
    {
        const uint64_t fitting = std::min(value, kMaxSize);
        number16(static_cast<uint16_t>(fitting));
        number16(static_cast<uint16_t>(fitting >> 16));
    }
    void number64(uint64_t value)
    {
        number32(value & kMaxSize);
        number32(value >> 32);
    }
    void bytes(std::span<const uint8_t> bytes)
    {
        for (const uint8_t byte : bytes)
            m_bytes.push_back(byte);
    }

    std::vector<uint8_t> take() { return std::move(m_bytes); }

private:
    std::vector<uint8_t> m_bytes;
};

void writeFormat(ByteWriter &out, const WaveHeader &header)
{
    out.text("fmt ");
    out.number32(header.isExtensible() ? kExtensibleFormatBytes : kPlainFormatBytes);
    out.number16(header.formatTag);
    out.number16(header.channels);
    out.number32(header.samplesPerSecond);
    out.number32(header.bytesPerSecond);
    out.number16(header.blockAlign);
    out.number16(header.bitsPerSample);
    if (!header.isExtensible())
        return;
    out.number16(22); // bytes that follow
    out.number16(header.validBits);
    out.number32(header.channelMask);
    out.bytes(kPcmSubformat);
}

void writeSizes64(ByteWriter &out, const WaveHeader &header, uint64_t riffBytes, uint64_t dataBytes)
{
    out.text("ds64");
    out.number32(kSizes64Bytes);
    out.number64(riffBytes);
    out.number64(dataBytes);
    out.number64(header.blockAlign == 0 ? 0 : dataBytes / header.blockAlign);
    out.number32(0); // further sizes
}

} // namespace

std::vector<uint8_t> makeWaveHeader(const WaveHeader &header, uint64_t dataBytes, uint64_t behindBytes)
{
    const uint64_t riffBytes = header.canonicalBytes() - 8 + dataBytes + behindBytes;
    ByteWriter out;
    if (riffBytes > kMaxSize) {
        out.text("RF64");
        out.number32(kMaxSize);
        out.text("WAVE");
        writeSizes64(out, header, riffBytes + kSizes64Bytes + 8, dataBytes);
    } else {
        out.text("RIFF");
        out.number32(riffBytes);
        out.text("WAVE");
    }
    writeFormat(out, header);
    out.text("data");
    out.number32(riffBytes > kMaxSize ? kMaxSize : dataBytes);
    return out.take();
}

std::vector<uint8_t> makeWaveHeader(const WaveHeader &header, uint64_t dataBytes)
{
    return makeWaveHeader(header, dataBytes, dataBytes % 2);
}

std::vector<uint8_t> headerWithSizes(const WaveHeader &header, uint64_t dataBytes, uint64_t behindBytes)
{
    constexpr size_t kSizeBytes = 4;
    const uint64_t riffBytes = header.bytes.size() - 8 + dataBytes + behindBytes;
    if (riffBytes > kMaxSize || !startsWith(header.bytes, "RIFF"))
        return makeWaveHeader(header, dataBytes, behindBytes);
    std::vector<uint8_t> bytes = header.bytes;
    putLittleEndian32(bytes.data() + kSizeBytes, static_cast<uint32_t>(riffBytes));
    putLittleEndian32(bytes.data() + bytes.size() - kSizeBytes, static_cast<uint32_t>(dataBytes));
    return bytes;
}

WaveHeader pcmHeader(uint32_t samplesPerSecond, unsigned channels, unsigned bits, uint32_t channelMask)
{
    WaveHeader header;
    const unsigned containerBytes = (bits + 7) / 8;
    const bool isPlain = (bits == 8 || bits == 16) && channels <= 2 && channelMask == 0;
    header.formatTag = isPlain ? 1 : 0xFFFE;
    header.channels = static_cast<uint16_t>(channels);
    header.samplesPerSecond = samplesPerSecond;
    header.blockAlign = static_cast<uint16_t>(channels * containerBytes);
    header.bytesPerSecond = samplesPerSecond * header.blockAlign;
    header.bitsPerSample = static_cast<uint16_t>(containerBytes * 8);
    header.validBits = static_cast<uint16_t>(bits);
    header.channelMask = channelMask;
    if (channelMask == 0 && channels < kChannelMasks.size())
        header.channelMask = kChannelMasks[channels];
    return header;
}

} // namespace nurv
