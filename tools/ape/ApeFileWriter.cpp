// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeFileWriter.h"

#include "ape/ApeError.h"
#include "support/Bytes.h"
#include "support/OutputFile.h"

#include <cstring>
#include <limits>

namespace nurv {

namespace {

constexpr size_t kEntryBytes = 4;
constexpr size_t kWordBytes = 4;

} // namespace

ApeFileWriter::ApeFileWriter(OutputFile &output, const ApeHeader &header, std::span<const uint8_t> storedHeader,
                             std::optional<uint32_t> expectedFrames)
    : m_output(output), m_header(header), m_storedHeader(storedHeader)
{
    if (expectedFrames && output.isSeekable()) {
        m_seekEntries = *expectedFrames;
        m_md5.add(m_storedHeader);
        m_output.write(head({}));
        m_output.write(seekTable());
        m_output.write(m_storedHeader);
    } else {
        m_waiting.emplace(m_output.spoolFolder());
    }
}

void ApeFileWriter::addFrame(std::span<const uint8_t> frame, uint32_t blocks)
{
    if (!m_waiting && m_frameStarts.size() == m_seekEntries)
        throw ApeError(ApeErrorNumber::Read, "the input changed while it was read");
    m_frameStarts.push_back(m_streamBytes);
    m_header.finalFrameBlocks = blocks;
    addStream(frame);
}

void ApeFileWriter::addStream(std::span<const uint8_t> bytes)
{
    m_streamBytes += bytes.size();
    m_words.insert(m_words.end(), bytes.begin(), bytes.end());
    const size_t whole = m_words.size() / kWordBytes * kWordBytes;
    for (size_t at = 0; at < whole; at += kWordBytes) {
        uint32_t word = 0;
        std::memcpy(&word, &m_words[at], sizeof word);
        word = __builtin_bswap32(word);
        std::memcpy(&m_words[at], &word, sizeof word);
    }
    addBody(std::span<const uint8_t>(m_words).first(whole));
    m_words.erase(m_words.begin(), m_words.begin() + static_cast<std::ptrdiff_t>(whole));
}

/// Ends the stream as encoders always did: with one to four bytes, also where it ends
/// with a word.
void ApeFileWriter::padStream()
{
    if (m_isStreamPadded)
        return;
    constexpr uint8_t kPadding[kWordBytes] = {};
    addStream(std::span(kPadding).first(kWordBytes - m_streamBytes % kWordBytes));
    m_isStreamPadded = true;
}

void ApeFileWriter::addBody(std::span<const uint8_t> bytes)
{
    if (m_waiting) {
        m_waiting->write(bytes);
        return;
    }
    m_md5.add(bytes);
    m_output.write(bytes);
}

void ApeFileWriter::addStoredTrailing(std::span<const uint8_t> bytes)
{
    padStream();
    m_trailingBytes += bytes.size();
    if (m_trailingBytes > std::numeric_limits<uint32_t>::max())
        throw ApeError(ApeErrorNumber::InputTooLarge, "more than 4 GiB follow the samples");
    addBody(bytes);
}

void ApeFileWriter::forgetStoredHeader()
{
    m_storedHeader = {};
    m_header.formatFlags |= kApeFlagMakeWaveHeader;
}

void ApeFileWriter::finish()
{
    padStream();
    m_header.totalFrames = static_cast<uint32_t>(m_frameStarts.size());
    if (m_waiting) {
        m_seekEntries = m_frameStarts.size();
        m_md5.add(m_storedHeader);
        m_waiting->read([this](std::span<const uint8_t> bytes) { m_md5.add(bytes); });
    }
    std::array<uint8_t, kApeHeaderBytes> headerBytes{};
    m_header.write(headerBytes);
    const std::vector<uint8_t> table = seekTable();
    m_md5.add(headerBytes);
    m_md5.add(table);
    const std::vector<uint8_t> start = head(m_md5.result());
    if (!m_waiting) {
        m_output.overwrite(0, start);
        m_output.overwrite(start.size(), table);
        return;
    }
    m_output.write(start);
    m_output.write(table);
    m_output.write(m_storedHeader);
    m_waiting->read([this](std::span<const uint8_t> bytes) { m_output.write(bytes); });
}

/// Descriptor and header.
std::vector<uint8_t> ApeFileWriter::head(const std::array<uint8_t, 16> &md5) const
{
    ApeDescriptor descriptor;
    descriptor.seekTableBytes = static_cast<uint32_t>(m_seekEntries * kEntryBytes);
    descriptor.storedHeaderBytes = static_cast<uint32_t>(m_storedHeader.size());
    descriptor.frameDataBytes = m_streamBytes;
    descriptor.storedTrailingBytes = static_cast<uint32_t>(m_trailingBytes);
    descriptor.md5 = md5;
    std::vector<uint8_t> bytes(kApeDescriptorBytes + kApeHeaderBytes);
    descriptor.write(std::span(bytes).first<kApeDescriptorBytes>());
    m_header.write(std::span(bytes).subspan<kApeDescriptorBytes, kApeHeaderBytes>());
    return bytes;
}

/// Positions in the file, their lower 32 bits. Entries without a frame are 0.
std::vector<uint8_t> ApeFileWriter::seekTable() const
{
    std::vector<uint8_t> table(m_seekEntries * kEntryBytes);
    const uint64_t first = kApeDescriptorBytes + kApeHeaderBytes + table.size() + m_storedHeader.size();
    for (size_t i = 0; i < m_frameStarts.size(); ++i)
        putLittleEndian32(&table[i * kEntryBytes], static_cast<uint32_t>(first + m_frameStarts[i]));
    return table;
}

} // namespace nurv
