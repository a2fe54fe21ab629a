// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFileReader.h"

#include "ape/ApeFrameDecoder.h"
#include "support/Bytes.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"

#include <algorithm>
#include <cstring>

namespace nurv {

namespace {

constexpr uint32_t kMaxFrames = 1 << 22;                 // 80 days of CD sound
constexpr uint64_t kMaxFramePcmBytes = 16 * 1024 * 1024; // twice the frames of any encoder
constexpr uint32_t kMaxTableSlack = 1 << 20;
constexpr uint16_t kFirstUnknownFlag = 64;
constexpr size_t kReadStep = 1024 * 1024;

void reverseWords(std::span<uint8_t> bytes)
{
    for (size_t at = 0; at < bytes.size(); at += 4) {
        uint32_t word = 0;
        std::memcpy(&word, &bytes[at], sizeof word);
        word = __builtin_bswap32(word);
        std::memcpy(&bytes[at], &word, sizeof word);
    }
}

} // namespace

ApeOlderVersion::ApeOlderVersion(uint16_t version)
    : ApeError(ApeErrorNumber::UnsupportedVersion, "files of version " + std::to_string(version) + " are not supported")
{
}

ApeFileReader::ApeFileReader(InputFile &input) : m_input(input)
{
    skipId3v2Tags(m_input);
    m_start = m_input.position();
    readDescriptor();
    readHeader();
    readSeekTable();
}

void ApeFileReader::refuse(ApeErrorNumber number, const std::string &why) const
{
    throw ApeError(number, m_input.name() + ": " + why);
}

const std::string &ApeFileReader::inputName() const
{
    return m_input.name();
}

void ApeFileReader::readDescriptor()
{
    constexpr size_t kVersionEnd = 6;
    const std::span<const uint8_t> first = m_input.peek(kVersionEnd);
    if (first.size() < kVersionEnd || !startsWith(first, "MAC "))
        refuse(ApeErrorNumber::InvalidInputFile, "this is no Monkey's Audio file");
    const uint16_t version = littleEndian16(first.data() + 4);
    if (version < kApeVersion)
        throw ApeOlderVersion(version);
    if (version > kApeVersion)
        refuse(ApeErrorNumber::UnsupportedVersion,
               "files of version " + std::to_string(version) + " are not supported");
    std::array<uint8_t, kApeDescriptorBytes> bytes{};
    m_input.readExactly(bytes);
    m_descriptor = ApeDescriptor::read(bytes);
    if (m_descriptor.descriptorBytes < kApeDescriptorBytes || m_descriptor.headerBytes < kApeHeaderBytes
        || m_descriptor.headerBytes > kMaxTableSlack) {
        refuse(ApeErrorNumber::InvalidInputFile, "the descriptor is damaged");
    }
    checkParts();
    m_input.skip(m_descriptor.descriptorBytes - kApeDescriptorBytes);
}

void ApeFileReader::checkParts() const
{
    const std::optional<uint64_t> size = m_input.size();
    if (!size)
        return;
    const uint64_t small = uint64_t{m_descriptor.descriptorBytes} + m_descriptor.headerBytes
                           + m_descriptor.seekTableBytes + m_descriptor.storedHeaderBytes
                           + m_descriptor.storedTrailingBytes;
    const uint64_t present = *size - m_start;
    if (small > present || m_descriptor.frameDataBytes > present - small)
        refuse(ApeErrorNumber::Read, "the file ends too early");
}

void ApeFileReader::readHeader()
{
    m_headerBytes.resize(m_descriptor.headerBytes);
    m_input.readExactly(m_headerBytes);
    m_header = ApeHeader::read(std::span(m_headerBytes).first<kApeHeaderBytes>());
    if (!apeLevelFromNumber(m_header.level))
        refuse(ApeErrorNumber::InvalidInputFile, "there is no level " + std::to_string(m_header.level));
    if (m_header.channels != 1 && m_header.channels != 2)
        refuse(ApeErrorNumber::UnsupportedChannels, "only one and two channels are supported");
    if (m_header.bitsPerSample != 8 && m_header.bitsPerSample != 16 && m_header.bitsPerSample != 24)
        refuse(ApeErrorNumber::UnsupportedBitDepth, "only 8, 16 and 24 bits per sample are supported");
    if (m_header.formatFlags >= kFirstUnknownFlag)
        refuse(ApeErrorNumber::UnsupportedFileType, "only files made from WAV files are supported");
    if ((m_header.formatFlags & kApeFlagMakeWaveHeader) != 0 && hasStoredHeader())
        refuse(ApeErrorNumber::InvalidInputFile, "the header is damaged");
    if (m_header.totalFrames == 0)
        refuse(ApeErrorNumber::InputTooSmall, "the file holds no sound");
    if (m_header.finalFrameBlocks == 0 || m_header.finalFrameBlocks > m_header.blocksPerFrame)
        refuse(ApeErrorNumber::InvalidInputFile, "the header is damaged");
    if (uint64_t{m_header.blocksPerFrame} * m_header.bytesPerBlock() > kMaxFramePcmBytes)
        refuse(ApeErrorNumber::InvalidInputFile, "the frames are longer than any encoder makes them");
}

void ApeFileReader::readSeekTable()
{
    constexpr size_t kEntryBytes = 4;
    const uint64_t tableBytes = m_descriptor.seekTableBytes;
    if (m_header.totalFrames > kMaxFrames || tableBytes / kEntryBytes < m_header.totalFrames
        || tableBytes > uint64_t{kMaxFrames} * kEntryBytes + kMaxTableSlack) {
        refuse(ApeErrorNumber::InvalidInputFile, "the seek table is damaged");
    }
    // In steps: a pipe does not tell whether so much is there.
    while (m_seekTable.size() < tableBytes) {
        const size_t before = m_seekTable.size();
        m_seekTable.resize(static_cast<size_t>(std::min<uint64_t>(tableBytes, before + kReadStep)));
        m_input.readExactly(std::span(m_seekTable).subspan(before));
    }
    const uint64_t first =
        uint64_t{m_descriptor.descriptorBytes} + m_descriptor.headerBytes + tableBytes + m_descriptor.storedHeaderBytes;
    m_frameStarts.reserve(m_header.totalFrames + size_t{1});
    // The entries hold the lower 32 bits of positions that only grow.
    uint64_t position = first;
    for (uint32_t i = 0; i < m_header.totalFrames; ++i) {
        const uint32_t entry = littleEndian32(&m_seekTable[i * kEntryBytes]);
        position += entry - static_cast<uint32_t>(position);
        m_frameStarts.push_back(position - first);
    }
    m_frameStarts.push_back(m_descriptor.frameDataBytes);
    if (m_frameStarts[0] != 0 || m_descriptor.frameDataBytes % 4 != 0 || !std::ranges::is_sorted(m_frameStarts))
        refuse(ApeErrorNumber::InvalidInputFile, "the seek table is damaged");
}

void ApeFileReader::readStoredHeader(const ByteSink &sink)
{
    copyHashed(m_descriptor.storedHeaderBytes, sink);
}

void ApeFileReader::readStoredTrailing(const ByteSink &sink)
{
    copyHashed(m_descriptor.storedTrailingBytes, sink);
}

void ApeFileReader::copyHashed(uint64_t count, const ByteSink &sink)
{
    constexpr uint64_t kStep = 64 * 1024;
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min(count, kStep)));
    while (count > 0) {
        const std::span<uint8_t> piece = std::span(bytes).first(static_cast<size_t>(std::min(count, kStep)));
        m_input.readExactly(piece);
        m_md5.add(piece);
        sink(piece);
        count -= piece.size();
    }
}

std::span<const uint8_t> ApeFileReader::readFrame()
{
    const uint64_t start = m_frameStarts[m_nextFrame];
    const uint64_t end = m_frameStarts[m_nextFrame + size_t{1}];
    const uint64_t size = end - start;
    const uint64_t pcmBytes = uint64_t{m_header.blocksOfFrame(m_nextFrame)} * m_header.bytesPerBlock();
    ++m_nextFrame;
    if (size > 2 * pcmBytes + kReadStep)
        refuse(ApeErrorNumber::InvalidInputFile, "a frame is longer than its samples can make it");
    m_buffer.assign(m_carried.begin(), m_carried.end());
    const uint64_t wordsEnd = (end + 3) / 4 * 4;
    readWords(wordsEnd - std::min(wordsEnd, m_wordsRead));
    const auto frameEnd = m_buffer.begin() + static_cast<std::ptrdiff_t>(size);
    m_carried.assign(frameEnd, m_buffer.end());
    m_buffer.resize(static_cast<size_t>(size) + ApeFrameDecoder::kPaddingBytes);
    return std::span<const uint8_t>(m_buffer).first(static_cast<size_t>(size));
}

/// Adds the next bytes of the frames to the buffer, the right way round.
void ApeFileReader::readWords(uint64_t count)
{
    m_wordsRead += count;
    while (count > 0) {
        const auto step = static_cast<size_t>(std::min<uint64_t>(count, kReadStep));
        const size_t before = m_buffer.size();
        m_buffer.resize(before + step);
        const std::span<uint8_t> words = std::span(m_buffer).subspan(before);
        m_input.readExactly(words);
        m_md5.add(words);
        reverseWords(words);
        count -= step;
    }
}

void ApeFileReader::checkMd5()
{
    m_md5.add(m_headerBytes);
    m_md5.add(m_seekTable);
    constexpr std::array<uint8_t, 16> kNone{};
    if (m_descriptor.md5 != kNone && m_md5.result() != m_descriptor.md5)
        refuse(ApeErrorNumber::InvalidChecksum, "the checksum of the file does not match its bytes");
}

} // namespace nurv
