// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AiffWaveOutput.h"

#include "shntool/Console.h"
#include "shntool/FileWaveOutput.h"
#include "shntool/WaveHeaderReader.h"
#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"
#include "support/SystemCalls.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <string_view>

namespace nurv {

namespace {

constexpr uint32_t kCommonBytes = 18;
constexpr uint32_t kSoundHeadBytes = 8;

/// What was written so far, as a source.
class HeaderSource final : public PieceSource {
public:
    explicit HeaderSource(std::span<const uint8_t> bytes) { give(bytes); }

protected:
    bool makePiece() override { return false; }
};

void put(std::vector<uint8_t> &bytes, std::string_view text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void put16(std::vector<uint8_t> &bytes, unsigned value)
{
    bytes.push_back(static_cast<uint8_t>(value >> 8));
    bytes.push_back(static_cast<uint8_t>(value));
}

void put32(std::vector<uint8_t> &bytes, uint32_t value)
{
    put16(bytes, value >> 16);
    put16(bytes, value & 0xFFFF);
}

/// As an 80-bit floating-point number.
void putExtended(std::vector<uint8_t> &bytes, uint32_t value)
{
    constexpr unsigned kBias = 16383;
    const auto width = static_cast<unsigned>(std::bit_width(value));
    put16(bytes, value == 0 ? 0 : kBias + width - 1);
    put32(bytes, value == 0 ? 0 : value << (32 - width));
    put32(bytes, 0);
}

} // namespace

AiffWaveOutput::AiffWaveOutput(const std::string &name) : m_file(name) {}

/// Takes the header from the front of the bytes; it comes in one piece.
bool AiffWaveOutput::takeHeader(std::span<const uint8_t> &bytes)
{
    HeaderSource source(bytes);
    const Console silent("shntool", "");
    const_cast<Console &>(silent).isQuiet = true;
    WaveHeader header;
    if (readWaveHeader(source, {}, silent, header) != WaveHeaderFault::None || header.bitsPerSample == 0
        || header.bitsPerSample % 8 != 0 || header.bitsPerSample > 32 || header.channels == 0)
        return false;
    m_channels = header.channels;
    m_bits = header.isExtensible() && header.validBits > 0 && header.validBits <= header.bitsPerSample
                 ? header.validBits
                 : header.bitsPerSample;
    m_sampleBytes = header.bitsPerSample / 8U;
    m_samplesPerSecond = header.samplesPerSecond;
    m_dataBytes = header.dataBytes;
    bytes = bytes.subspan(header.bytes.size());
    m_hasHeader = true;
    return writeAll(m_file.descriptor(), head());
}

/// For the frames that were taken.
std::vector<uint8_t> AiffWaveOutput::head() const
{
    const uint64_t frames = m_taken / (uint64_t{m_channels} * m_sampleBytes);
    const auto soundBytes = static_cast<uint32_t>(frames * m_channels * m_sampleBytes);
    std::vector<uint8_t> bytes;
    put(bytes, "FORM");
    put32(bytes, 4 + 8 + kCommonBytes + 8 + kSoundHeadBytes + soundBytes + soundBytes % 2);
    put(bytes, "AIFFCOMM");
    put32(bytes, kCommonBytes);
    put16(bytes, m_channels);
    put32(bytes, static_cast<uint32_t>(frames));
    put16(bytes, m_bits);
    putExtended(bytes, m_samplesPerSecond);
    put(bytes, "SSND");
    put32(bytes, kSoundHeadBytes + soundBytes);
    put32(bytes, 0); // offset
    put32(bytes, 0); // block size
    return bytes;
}

bool AiffWaveOutput::write(std::span<const uint8_t> bytes)
{
    if (!m_hasHeader && !takeHeader(bytes))
        return false;
    // Chunks behind the data have no place here.
    const uint64_t left = m_dataBytes - std::min(m_dataBytes, m_taken + m_part.size());
    bytes = bytes.first(static_cast<size_t>(std::min<uint64_t>(left, bytes.size())));
    const size_t frameBytes = size_t{m_channels} * m_sampleBytes;
    if (!m_part.empty()) {
        const size_t missing = std::min(frameBytes - m_part.size(), bytes.size());
        m_part.insert(m_part.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(missing));
        bytes = bytes.subspan(missing);
        if (m_part.size() < frameBytes)
            return true;
        const std::vector<uint8_t> frame = std::move(m_part);
        m_part.clear();
        if (!writeSamples(frame))
            return false;
    }
    const size_t whole = bytes.size() / frameBytes * frameBytes;
    const auto rest = bytes.subspan(whole);
    m_part.assign(rest.begin(), rest.end());
    return writeSamples(bytes.first(whole));
}

bool AiffWaveOutput::writeSamples(std::span<const uint8_t> bytes)
{
    constexpr uint64_t kMostBytes = std::numeric_limits<uint32_t>::max() - 64;
    m_swapped.assign(bytes.begin(), bytes.end());
    if (m_sampleBytes == 1) {
        for (uint8_t &sample : m_swapped)
            sample ^= 0x80;
    } else {
        for (size_t at = 0; at < m_swapped.size(); at += m_sampleBytes)
            std::reverse(m_swapped.begin() + static_cast<std::ptrdiff_t>(at),
                         m_swapped.begin() + static_cast<std::ptrdiff_t>(at + m_sampleBytes));
    }
    m_taken += bytes.size();
    return m_taken <= kMostBytes && writeAll(m_file.descriptor(), m_swapped);
}

bool AiffWaveOutput::complete()
{
    if (!m_hasHeader)
        return false;
    const std::vector<uint8_t> padding(m_taken % 2);
    return writeAll(m_file.descriptor(), padding) && writeAllAt(m_file.descriptor(), head(), 0);
}

bool AiffWaveOutput::commit()
{
    return commitTemporaryFile(m_file);
}

} // namespace nurv
