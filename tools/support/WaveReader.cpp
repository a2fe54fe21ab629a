// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WaveReader.h"

#include "support/Bytes.h"
#include "support/InputFile.h"
#include "support/ToolError.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace nurv {

namespace {

constexpr uint64_t kMaxHeaderBytes = 64 * 1024 * 1024;
constexpr uint32_t kUnknownSize = 0xFFFFFFFF;
constexpr uint16_t kPcm = 1;
constexpr uint16_t kExtensible = 0xFFFE;
constexpr size_t kPlainFormatBytes = 16;
constexpr size_t kExtensibleFormatBytes = 40;
constexpr size_t kChannelMaskOffset = 20;
constexpr size_t kSubformatOffset = 24;
/// What follows the format tag in the subformat GUIDs that stand for one.
constexpr uint8_t kSubformatTail[] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                      0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

[[noreturn]] void refuse(const InputFile &input, const std::string &why)
{
    throw ToolError(ToolError::Kind::InvalidInput, input.name() + ": " + why);
}

} // namespace

WaveReader::WaveReader(InputFile &input, Kinds kinds) : m_input(input)
{
    readUpToPayload(kinds);
}

void WaveReader::readUpToPayload(Kinds kinds)
{
    const std::span<const uint8_t> head = takeIntoHeader(12);
    const bool isRf64 = startsWith(head, "RF64");
    if ((isRf64 && kinds == Kinds::Riff) || startsWith(head, "RIFX")) {
        throw ToolError(ToolError::Kind::UnsupportedFormat,
                        m_input.name() + ": " + std::string(head.begin(), head.begin() + 4)
                            + " files are not supported, only RIFF " + (kinds == Kinds::Riff ? "" : "and RF64 ")
                            + "WAV files");
    }
    if (head.size() < 12 || !(isRf64 || startsWith(head, "RIFF")) || !startsWith(head.subspan(8), "WAVE"))
        refuse(m_input, "this is no WAV file");
    for (;;) {
        const std::span<const uint8_t> chunk = takeIntoHeader(8);
        if (chunk.size() < 8)
            refuse(m_input, "the WAV file has no data chunk");
        const uint32_t size = littleEndian32(chunk.data() + 4);
        if (startsWith(chunk, "data")) {
            m_declaredDataBytes = size == kUnknownSize && m_wideDataBytes != 0 ? m_wideDataBytes : size;
            break;
        }
        const bool isFormat = startsWith(chunk, "fmt ");
        const bool isWideSizes = isRf64 && startsWith(chunk, "ds64");
        const uint64_t paddedSize = uint64_t{size} + (size & 1);
        const std::span<const uint8_t> contents = takeIntoHeader(paddedSize);
        if (contents.size() < paddedSize)
            refuse(m_input, "the WAV file has no data chunk");
        if (isFormat)
            readFormat(contents.first(size));
        else if (isWideSizes)
            readWideSizes(contents.first(size));
    }
    if (m_format.blockAlign == 0)
        refuse(m_input, "the WAV file has no fmt chunk before its data chunk");
    m_hasUnknownSize = m_declaredDataBytes == kUnknownSize
                       || (m_declaredDataBytes == 0 && !isAccountedFor() && !m_input.peek(1).empty());
    m_payloadLimit = m_hasUnknownSize ? std::numeric_limits<uint64_t>::max()
                                      : m_declaredDataBytes - m_declaredDataBytes % m_format.blockAlign;
}

/// EBU Tech 3306: the sizes of the RIFF and the data chunk, of 64 bits each.
void WaveReader::readWideSizes(std::span<const uint8_t> chunk)
{
    constexpr size_t kDataSizeOffset = 8;
    constexpr uint64_t kMostBytes = uint64_t{1} << 62;
    if (chunk.size() < kDataSizeOffset + 8)
        refuse(m_input, "the ds64 chunk of the WAV file is too short");
    const uint8_t *at = chunk.data() + kDataSizeOffset;
    m_wideDataBytes = littleEndian32(at) | uint64_t{littleEndian32(at + 4)} << 32;
    if (m_wideDataBytes > kMostBytes)
        refuse(m_input, "the ds64 chunk of the WAV file tells of more than any file holds");
}

/// Whether the RIFF chunk goes to the end of the file, as it does once a recording is
/// finished.
bool WaveReader::isAccountedFor() const
{
    constexpr uint64_t kRiffHeadBytes = 8;
    const uint32_t riffBytes = littleEndian32(m_header.data() + 4);
    return m_input.size() && riffBytes != kUnknownSize && riffBytes + kRiffHeadBytes >= *m_input.size();
}

/// Adds that many bytes to the header, fewer at the end of the input, and returns them.
std::span<const uint8_t> WaveReader::takeIntoHeader(uint64_t count)
{
    if (count > kMaxHeaderBytes - m_header.size())
        refuse(m_input, "the WAV file has no data chunk in its first 64 MiB");
    const size_t start = m_header.size();
    // In steps: the count comes from the file, which may be much shorter.
    constexpr uint64_t kStep = 64 * 1024;
    for (uint64_t left = count; left > 0;) {
        const auto step = static_cast<size_t>(std::min(left, kStep));
        const size_t end = m_header.size();
        m_header.resize(end + step);
        const size_t present = m_input.read(std::span(m_header).subspan(end));
        m_header.resize(end + present);
        if (present < step)
            break;
        left -= step;
    }
    return std::span<const uint8_t>(m_header).subspan(start);
}

void WaveReader::readFormat(std::span<const uint8_t> chunk)
{
    if (chunk.size() < kPlainFormatBytes)
        refuse(m_input, "the fmt chunk of the WAV file is too short");
    m_format = {};
    m_format.formatTag = littleEndian16(chunk.data());
    m_format.channels = littleEndian16(chunk.data() + 2);
    m_format.sampleRateHz = littleEndian32(chunk.data() + 4);
    m_format.blockAlign = littleEndian16(chunk.data() + 12);
    m_format.bitsPerSample = littleEndian16(chunk.data() + 14);
    if (m_format.formatTag == kExtensible && chunk.size() >= kExtensibleFormatBytes
        && std::ranges::equal(chunk.subspan(kSubformatOffset + 2, sizeof kSubformatTail), kSubformatTail)) {
        m_format.formatTag = littleEndian16(chunk.data() + kSubformatOffset);
        m_format.channelMask = littleEndian32(chunk.data() + kChannelMaskOffset);
    }
    if (m_format.channels == 0 || m_format.blockAlign == 0)
        refuse(m_input, "the WAV file has no channels");
    const uint32_t bytesPerSample = (m_format.bitsPerSample + 7U) / 8;
    if (m_format.isIntegerPcm() && m_format.blockAlign != m_format.channels * bytesPerSample)
        refuse(m_input, "the fmt chunk of the WAV file contradicts itself");
}

const WaveFormat &WaveReader::format() const
{
    return m_format;
}

std::span<const uint8_t> WaveReader::header() const
{
    return m_header;
}

uint64_t WaveReader::declaredDataBytes() const
{
    return m_declaredDataBytes;
}

bool WaveReader::hasUnknownSize() const
{
    return m_hasUnknownSize;
}

std::optional<uint64_t> WaveReader::payloadBytesPresent() const
{
    if (!m_input.size())
        return std::nullopt;
    const uint64_t position = m_input.position();
    const uint64_t present = *m_input.size() - std::min(position, *m_input.size());
    return std::min(present - present % m_format.blockAlign, m_payloadLimit - m_payloadBytesRead);
}

std::optional<uint64_t> WaveReader::payloadBytesDeclared() const
{
    return m_hasUnknownSize ? std::nullopt : std::optional(m_payloadLimit - m_payloadBytesRead);
}

size_t WaveReader::readPayload(std::span<uint8_t> bytes)
{
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(bytes.size(), m_payloadLimit - m_payloadBytesRead));
    const size_t present = m_input.read(bytes.first(wanted));
    const size_t whole = present - present % m_format.blockAlign;
    m_partialFrame.insert(m_partialFrame.end(), bytes.begin() + static_cast<std::ptrdiff_t>(whole),
                          bytes.begin() + static_cast<std::ptrdiff_t>(present));
    m_payloadBytesRead += whole;
    return whole;
}

uint64_t WaveReader::payloadBytesRead() const
{
    return m_payloadBytesRead;
}

size_t WaveReader::readTrailing(std::span<uint8_t> bytes)
{
    const size_t partial = std::min(m_partialFrame.size(), bytes.size());
    const auto end = m_partialFrame.begin() + static_cast<std::ptrdiff_t>(partial);
    std::copy(m_partialFrame.begin(), end, bytes.begin());
    m_partialFrame.erase(m_partialFrame.begin(), end);
    return partial + m_input.read(bytes.subspan(partial));
}

std::vector<uint8_t> canonicalWaveHeader(const PcmFormat &format, uint64_t dataBytes)
{
    const auto blockAlign = static_cast<uint16_t>(format.channels * ((format.bitsPerSample + 7U) / 8));
    constexpr size_t kHeaderBytes = 44;
    const auto inField = [](uint64_t size) { return static_cast<uint32_t>(std::min<uint64_t>(size, kUnknownSize)); };
    const auto putName = [](uint8_t *at, std::string_view name) { std::copy(name.begin(), name.end(), at); };
    std::vector<uint8_t> header(kHeaderBytes);
    uint8_t *const at = header.data();
    putName(at, "RIFF");
    putLittleEndian32(at + 4, inField(kHeaderBytes - 8 + dataBytes + dataBytes % 2));
    putName(at + 8, "WAVEfmt ");
    putLittleEndian32(at + 16, kPlainFormatBytes);
    putLittleEndian16(at + 20, kPcm);
    putLittleEndian16(at + 22, format.channels);
    putLittleEndian32(at + 24, format.sampleRateHz);
    putLittleEndian32(at + 28, inField(uint64_t{format.sampleRateHz} * blockAlign));
    putLittleEndian16(at + 32, blockAlign);
    putLittleEndian16(at + 34, format.bitsPerSample);
    putName(at + 36, "data");
    putLittleEndian32(at + 40, inField(dataBytes));
    return header;
}

} // namespace nurv
