// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WaveHeaderReader.h"

#include "shntool/RunMessages.h"
#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"
#include "support/Bytes.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

namespace {

constexpr uint64_t kMaxHeaderBytes = uint64_t{64} << 20;
/// Twice as many bytes as any file system of today can hold.
constexpr uint64_t kMostBytes = uint64_t{1} << 62;
constexpr uint32_t kNoSize = std::numeric_limits<uint32_t>::max();
constexpr size_t kChunkHeadBytes = 8;
constexpr size_t kSubformatOffset = 24;

struct WaveChunk {
    std::array<uint8_t, 4> name{};
    uint32_t bytes = 0;

    [[nodiscard]] bool is(std::string_view text) const { return startsWith(name, text); }
};

std::string formatName(uint16_t tag)
{
    switch (tag) {
    case 0x0000: return "Microsoft Official Unknown";
    case 0x0001: return "Microsoft PCM";
    case 0x0002: return "Microsoft ADPCM";
    case 0x0003: return "IEEE Float";
    case 0x0006: return "Microsoft A-law";
    case 0x0007: return "Microsoft U-law";
    case 0x0010: return "OKI ADPCM format";
    case 0x0011: return "IMA ADPCM";
    case 0x0015: return "Digistd format";
    case 0x0016: return "Digifix format";
    case 0x0030: return "Dolby AC2";
    case 0x0031: return "GSM 6.10";
    case 0x003B: return "Rockwell ADPCM";
    case 0x003C: return "Rockwell DIGITALK";
    case 0x0040: return "G.721 ADPCM";
    case 0x0041: return "G.728 CELP";
    case 0x0050: return "MPEG";
    case 0x0055: return "MPEG Layer 3";
    case 0x0064: return "G.726 ADPCM";
    case 0x0065: return "G.722 ADPCM";
    default: return "Unknown";
    }
}

bool isPrintable(uint8_t byte)
{
    return byte >= 0x20 && byte < 0x7F;
}

/// Takes a head apart, and keeps its bytes. An unexpected end is told by `Fault`.
class WaveChunkReader {
public:
    struct Fault {
        WaveHeaderFault kind;
        std::string text; ///< without the name of the file; empty: say nothing
    };

    WaveChunkReader(WaveSource &source, const std::string &fileName, const RunMessages &messages, WaveHeader &header)
        : m_source(source), m_fileName(fileName), m_messages(messages), m_header(header)
    {
    }

    void read()
    {
        readRiff();
        readFormatChunk();
        findData();
    }

private:
    void readRiff();
    void readFormatChunk();
    void readFormat(uint32_t chunkBytes);
    void readSubformat(std::span<const uint8_t> format);
    void readSizes64(uint32_t chunkBytes);
    void findData();
    std::optional<WaveChunk> nextChunk();
    std::optional<std::span<const uint8_t>> take(uint64_t count);
    bool pass(uint32_t chunkBytes);
    void passPadByte();
    [[noreturn]] static void fail(const std::string &text) { throw Fault{WaveHeaderFault::Malformed, text}; }

    WaveSource &m_source;
    const std::string &m_fileName;
    const RunMessages &m_messages;
    WaveHeader &m_header;
    size_t m_position = 0; ///< in the bytes kept; those behind it were only looked at
    std::optional<uint64_t> m_dataBytes64;
};

std::optional<std::span<const uint8_t>> WaveChunkReader::take(uint64_t count)
{
    std::vector<uint8_t> &bytes = m_header.bytes;
    if (count > kMaxHeaderBytes - m_position)
        return std::nullopt;
    const size_t end = m_position + static_cast<size_t>(count);
    // What the chunk says is not believed before it is there.
    constexpr size_t kStep = size_t{64} * 1024;
    while (bytes.size() < end) {
        const size_t start = bytes.size();
        bytes.resize(std::min(end, start + kStep));
        const size_t got = m_source.read(std::span(bytes).subspan(start));
        if (got < bytes.size() - start) {
            bytes.resize(start + got);
            return std::nullopt;
        }
    }
    const auto taken = std::span<const uint8_t>(bytes).subspan(m_position, static_cast<size_t>(count));
    m_position = end;
    return taken;
}

std::optional<WaveChunk> WaveChunkReader::nextChunk()
{
    const auto head = take(kChunkHeadBytes);
    if (!head)
        return std::nullopt;
    WaveChunk chunk;
    std::copy_n(head->begin(), chunk.name.size(), chunk.name.begin());
    chunk.bytes = littleEndian32(head->data() + chunk.name.size());
    m_messages.debug("found chunk: [" + std::string(chunk.name.begin(), chunk.name.end())
                    + "] with length: " + std::to_string(chunk.bytes));
    return chunk;
}

bool WaveChunkReader::pass(uint32_t chunkBytes)
{
    if (!take(chunkBytes))
        return false;
    if (chunkBytes % 2 != 0)
        passPadByte();
    return true;
}

/// Some programs leave it out: then the name of the next chunk stands there.
void WaveChunkReader::passPadByte()
{
    const size_t before = m_position;
    const auto next = take(1);
    if (next && isPrintable(next->front()))
        m_position = before;
}

void WaveChunkReader::readRiff()
{
    const auto name = take(4);
    if (!name)
        throw Fault{m_header.bytes.empty() ? WaveHeaderFault::NoBytes : WaveHeaderFault::NotWave, {}};
    const bool isRf64 = startsWith(*name, "RF64");
    if (!isRf64 && !startsWith(*name, "RIFF")) {
        if (startsWith(*name, "FORM"))
            throw Fault{WaveHeaderFault::NotWave, "encountered unsupported AIFF data"};
        throw Fault{WaveHeaderFault::NotWave, "WAVE header is missing RIFF tag"};
    }
    const auto size = take(4);
    if (!size)
        fail("could not read chunk size from WAVE header");
    m_header.chunkBytes = littleEndian32(size->data());
    const auto kind = take(4);
    if (!kind || !startsWith(*kind, "WAVE"))
        fail("WAVE header is missing WAVE tag");
}

void WaveChunkReader::readSizes64(uint32_t chunkBytes)
{
    const auto sizes = take(chunkBytes);
    if (!sizes || sizes->size() < 16)
        fail("WAVE header has a ds64 chunk that is too short");
    const auto number64 = [&](size_t at) {
        return littleEndian32(sizes->data() + at) | uint64_t{littleEndian32(sizes->data() + at + 4)} << 32;
    };
    // Sums of what is larger would start again at nothing.
    if (number64(0) > kMostBytes || number64(8) > kMostBytes)
        fail("WAVE header has a ds64 chunk with a size that no file has");
    if (m_header.chunkBytes == kNoSize)
        m_header.chunkBytes = number64(0);
    m_dataBytes64 = number64(8);
}

void WaveChunkReader::readFormatChunk()
{
    m_messages.debug("showing RIFF chunks in file: [" + m_fileName + "]");
    for (;;) {
        const std::optional<WaveChunk> chunk = nextChunk();
        if (!chunk)
            fail("reached end of file while looking for fmt tag");
        if (chunk->is("fmt "))
            return readFormat(chunk->bytes);
        if (chunk->is("ds64"))
            readSizes64(chunk->bytes);
        else if (!pass(chunk->bytes))
            fail("reached end of file when jumping ahead " + std::to_string(chunk->bytes)
                 + " bytes during search for fmt tag");
    }
}

void WaveChunkReader::readFormat(uint32_t chunkBytes)
{
    if (chunkBytes < kPlainFormatBytes)
        fail("fmt chunk in WAVE header was too short");
    const auto tag = take(2);
    if (!tag)
        fail("reached end of file while reading format");
    m_header.formatTag = littleEndian16(tag->data());
    if (m_header.formatTag != 1 && !m_header.isExtensible()) {
        std::array<char, 16> number{};
        std::snprintf(number.data(), number.size(), "0x%04x", m_header.formatTag);
        fail(std::string("unsupported format ") + number.data() + " (" + formatName(m_header.formatTag) + ")");
    }
    const auto field = [this](size_t bytes, const char *name) {
        const auto value = take(bytes);
        if (!value)
            fail(std::string("reached end of file reading ") + name);
        return bytes == 2 ? littleEndian16(value->data()) : littleEndian32(value->data());
    };
    m_header.channels = static_cast<uint16_t>(field(2, "channels"));
    m_header.samplesPerSecond = field(4, "samples/sec");
    m_header.bytesPerSecond = field(4, "average bytes/sec");
    m_header.blockAlign = static_cast<uint16_t>(field(2, "block align"));
    m_header.bitsPerSample = static_cast<uint16_t>(field(2, "bits/sample"));
    if (m_header.calculatedRate() == 0 || m_header.bytesPerSecond == 0 || m_header.blockAlign == 0)
        fail("WAVE header tells of no sound");
    const uint32_t rest = chunkBytes - kPlainFormatBytes;
    const size_t start = m_position;
    if (!pass(rest))
        fail("reached end of file jumping ahead " + std::to_string(rest) + " bytes");
    readSubformat(std::span<const uint8_t>(m_header.bytes).subspan(start, rest));
}

/// `format` is what follows the plain fields.
void WaveChunkReader::readSubformat(std::span<const uint8_t> format)
{
    if (!m_header.isExtensible())
        return;
    constexpr size_t kNeeded = kSubformatOffset - kPlainFormatBytes + 2;
    if (format.size() < kNeeded)
        fail("fmt chunk in WAVE header was too short");
    m_header.validBits = littleEndian16(format.data() + 2);
    m_header.channelMask = littleEndian32(format.data() + 4);
    const uint16_t subformat = littleEndian16(format.data() + kSubformatOffset - kPlainFormatBytes);
    if (subformat == 1)
        return;
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%04x", subformat);
    fail(std::string("unsupported format ") + number.data() + " (" + formatName(subformat) + ")");
}

void WaveChunkReader::findData()
{
    for (;;) {
        const std::optional<WaveChunk> chunk = nextChunk();
        if (!chunk)
            fail("reached end of file looking for data tag");
        if (chunk->is("data")) {
            m_header.dataBytes = chunk->bytes == kNoSize && m_dataBytes64 ? *m_dataBytes64 : chunk->bytes;
            return;
        }
        if (!pass(chunk->bytes)) {
            fail("reached end of file jumping ahead " + std::to_string(chunk->bytes)
                 + " bytes when looking for data tag");
        }
    }
}

} // namespace

WaveHeaderFault readWaveHeader(WaveSource &source, const std::string &fileName, const RunMessages &messages,
                               WaveHeader &header)
{
    try {
        WaveChunkReader(source, fileName, messages, header).read();
        return WaveHeaderFault::None;
    } catch (const WaveChunkReader::Fault &fault) {
        if (!fault.text.empty())
            messages.warn(fault.text + " while processing file: [" + fileName + "]");
        return fault.kind;
    }
}

std::string waveFormatName(uint16_t tag)
{
    return formatName(tag);
}

} // namespace nurv
