// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AiffWaveSource.h"

#include "shntool/PcmWaveHeader.h"
#include "support/Bytes.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace nurv {

namespace {

constexpr size_t kPieceBytes = size_t{128} * 1024;
constexpr uint32_t kCommonBytes = 18;
constexpr uint32_t kSoundHeadBytes = 8;
constexpr unsigned kMaxBits = 32;
/// Of a frame, in the header of a WAV file.
constexpr unsigned kMaxFrameBytes = 0xFFFF;

uint16_t bigEndian16(const uint8_t *at)
{
    return static_cast<uint16_t>(at[0] << 8 | at[1]);
}

uint32_t bigEndian32(const uint8_t *at)
{
    return uint32_t{bigEndian16(at)} << 16 | bigEndian16(at + 2);
}

/// An 80-bit floating-point number, as rates are written; 0 where it is no rate.
uint32_t rateFromExtended(const uint8_t *at)
{
    constexpr int kBias = 16383;
    constexpr int kFractionBits = 63;
    const int exponent = bigEndian16(at) - kBias;
    const uint64_t mantissa = uint64_t{bigEndian32(at + 2)} << 32 | bigEndian32(at + 6);
    if (exponent < 0 || exponent > 31)
        return 0;
    return static_cast<uint32_t>(std::lround(std::ldexp(static_cast<double>(mantissa), exponent - kFractionBits)));
}

[[noreturn]] void fail(ToolError::Kind kind, const InputFile &input, const std::string &why)
{
    throw ToolError(kind, input.name() + ": " + why);
}

} // namespace

AiffWaveSource::AiffWaveSource(const std::string &name, uint64_t id3Bytes) : m_input(name)
{
    m_input.skip(id3Bytes);
    readChunks();
    const unsigned containerBytes = (m_common->bits + 7U) / 8;
    const uint64_t counted = uint64_t{m_common->frames} * m_common->channels * containerBytes;
    m_header = pcmHeader(m_common->samplesPerSecond, m_common->channels, m_common->bits);
    m_dataBytes = counted;
    if (counted == 0)
        fail(ToolError::Kind::Damaged, m_input, "there is no sound in this AIFF file");
    m_input.seek(m_soundOffset);
}

void AiffWaveSource::readChunks()
{
    constexpr size_t kHeadBytes = 12;
    std::array<uint8_t, kHeadBytes> head{};
    if (m_input.read(head) != head.size() || !startsWith(head, "FORM"))
        fail(ToolError::Kind::InvalidInput, m_input, "this is no AIFF file");
    const auto kind = std::span<const uint8_t>(head).subspan(8);
    const bool isCompressedKind = startsWith(kind, "AIFC");
    if (!isCompressedKind && !startsWith(kind, "AIFF"))
        fail(ToolError::Kind::InvalidInput, m_input, "this is no AIFF file");
    while (!m_common || m_soundOffset == 0) {
        std::array<uint8_t, 8> chunk{};
        if (m_input.read(chunk) != chunk.size())
            fail(ToolError::Kind::InvalidInput, m_input, "there is no sound in this AIFF file");
        const uint32_t bytes = bigEndian32(chunk.data() + 4);
        const uint64_t end = m_input.position() + bytes + bytes % 2;
        if (startsWith(chunk, "COMM"))
            readCommon(bytes, isCompressedKind);
        else if (startsWith(chunk, "SSND"))
            readSoundHead(bytes);
        m_input.seek(end);
    }
}

void AiffWaveSource::readCommon(uint32_t chunkBytes, bool isCompressedKind)
{
    std::array<uint8_t, kCommonBytes + 4> bytes{};
    const size_t needed = isCompressedKind ? bytes.size() : kCommonBytes;
    if (chunkBytes < needed || m_input.read(std::span(bytes).first(needed)) != needed)
        fail(ToolError::Kind::InvalidInput, m_input, "the COMM chunk is too short");
    Common common{.channels = bigEndian16(bytes.data()),
                  .frames = bigEndian32(bytes.data() + 2),
                  .bits = bigEndian16(bytes.data() + 6),
                  .samplesPerSecond = rateFromExtended(bytes.data() + 8)};
    const auto compression = std::span<const uint8_t>(bytes).subspan(kCommonBytes);
    if (isCompressedKind) {
        common.isLittleEndian = startsWith(compression, "sowt");
        if (!common.isLittleEndian && !startsWith(compression, "NONE") && !startsWith(compression, "twos"))
            fail(ToolError::Kind::UnsupportedFormat, m_input, "the sound is compressed");
    }
    const unsigned sampleBytes = (common.bits + 7U) / 8U;
    if (common.channels == 0 || common.bits == 0 || common.bits > kMaxBits
        || common.channels * sampleBytes > kMaxFrameBytes || common.samplesPerSecond == 0)
        fail(ToolError::Kind::UnsupportedFormat, m_input, "there is no such sound");
    m_common = common;
}

void AiffWaveSource::readSoundHead(uint32_t chunkBytes)
{
    std::array<uint8_t, kSoundHeadBytes> bytes{};
    if (chunkBytes < bytes.size() || m_input.read(bytes) != bytes.size())
        fail(ToolError::Kind::InvalidInput, m_input, "the SSND chunk is too short");
    // What fills up a block of some size stands in front.
    const uint32_t filling = bigEndian32(bytes.data());
    m_soundOffset = m_input.position() + filling;
    m_soundBytes = chunkBytes - kSoundHeadBytes;
    m_soundBytes -= std::min<uint64_t>(m_soundBytes, filling);
}

bool AiffWaveSource::makePiece()
{
    switch (m_next) {
    case Part::Header:
        give(makeWaveHeader(m_header, m_dataBytes));
        m_next = Part::Frames;
        return true;
    case Part::Frames:
        if (m_bytesGiven < m_dataBytes) {
            makeFrames();
            return true;
        }
        m_next = Part::Nothing;
        if (m_dataBytes % 2 != 0)
            give(std::array<uint8_t, 1>{});
        return false;
    case Part::Nothing: break;
    }
    return false;
}

void AiffWaveSource::makeFrames()
{
    const size_t sampleBytes = m_header.bitsPerSample / 8U;
    const size_t most = std::max(kPieceBytes / m_header.blockAlign, size_t{1}) * m_header.blockAlign;
    m_frames.resize(static_cast<size_t>(std::min<uint64_t>(most, m_dataBytes - m_bytesGiven)));
    const uint64_t held = m_soundBytes - std::min(m_soundBytes, m_bytesGiven);
    const size_t wanted = static_cast<size_t>(std::min<uint64_t>(held, m_frames.size()));
    const size_t got = m_input.read(std::span(m_frames).first(wanted)) / m_header.blockAlign * m_header.blockAlign;
    const bool isShort = got < m_frames.size();
    m_frames.resize(got);
    if (!m_common->isLittleEndian && sampleBytes > 1) {
        for (size_t at = 0; at < got; at += sampleBytes)
            std::reverse(m_frames.begin() + static_cast<std::ptrdiff_t>(at),
                         m_frames.begin() + static_cast<std::ptrdiff_t>(at + sampleBytes));
    } else if (sampleBytes == 1) {
        for (uint8_t &sample : m_frames)
            sample ^= 0x80;
    }
    give(m_frames);
    m_bytesGiven += got;
    if (isShort)
        fail(ToolError::Kind::Damaged, m_input, "there is less sound than the file counts");
}

} // namespace nurv
