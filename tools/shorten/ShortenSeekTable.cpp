// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenSeekTable.h"

#include "support/Bytes.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace nurv::shorten {

namespace {

constexpr uint64_t kFramesBetweenPoints = 25600;
constexpr uint32_t kRevision = 1;
constexpr size_t kTableHeaderBytes = 12;
constexpr size_t kEntryBytes = 80;
constexpr size_t kTrailerBytes = 12;
constexpr uint64_t kReaderBufferBytes = 512;
constexpr uint64_t kWordBytes = 4;
constexpr uint64_t kMaxNumber = std::numeric_limits<uint32_t>::max();

// Where an entry's fields start.
constexpr size_t kFrameField = 0;
constexpr size_t kFillEndField = 4;
constexpr size_t kFillStartField = 8;
constexpr size_t kBytesLeftField = 12;
constexpr size_t kBytesTakenField = 14;
constexpr size_t kBitsLeftField = 16;
constexpr size_t kWordField = 18;
constexpr size_t kShiftField = 22;
constexpr size_t kHistoryField = 24;
constexpr size_t kMeansField = 48;

template<typename Table>
void putAll(uint8_t *at, const Table &table)
{
    for (const auto &channel : table) {
        for (const int32_t value : channel) {
            putLittleEndian32(at, static_cast<uint32_t>(value));
            at += sizeof value;
        }
    }
}

/// The offset, in the file, of the word that the entry's reader has taken last.
uint64_t wordOffset(const uint8_t *entry)
{
    return littleEndian32(entry + kFillStartField) + littleEndian16(entry + kBytesTakenField) - kWordBytes;
}

} // namespace

bool ShortenSeekTable::canDescribe(const StreamHeader &header)
{
    return header.channels <= 2 && header.maxPredictorOrder <= kMinHistory && header.meanCount <= 4;
}

void ShortenSeekTable::addPoint(const ShortenSeekPoint &point)
{
    m_nextFrame += ((point.frame - m_nextFrame) / kFramesBetweenPoints + 1) * kFramesBetweenPoints;
    const uint64_t words = (point.bitPosition + 31) / 32;
    const uint64_t fills = (words * kWordBytes - 1) / kReaderBufferBytes;
    const uint64_t fillStart = kStreamOffset + fills * kReaderBufferBytes;
    if (point.frame > kMaxNumber || fillStart + kReaderBufferBytes > kMaxNumber)
        m_isTooLong = true;
    if (m_isTooLong) {
        m_entries = {};
        m_firstWithoutWord = 0;
        return;
    }
    m_entries.resize(m_entries.size() + kEntryBytes);
    uint8_t *const entry = m_entries.data() + m_entries.size() - kEntryBytes;
    putLittleEndian32(entry + kFrameField, static_cast<uint32_t>(point.frame));
    putLittleEndian32(entry + kFillStartField, static_cast<uint32_t>(fillStart));
    putLittleEndian16(entry + kBytesTakenField, static_cast<uint16_t>(words * kWordBytes - fills * kReaderBufferBytes));
    putLittleEndian16(entry + kBitsLeftField, static_cast<uint16_t>(words * 32 - point.bitPosition));
    putLittleEndian16(entry + kShiftField, static_cast<uint16_t>(point.shift));
    putAll(entry + kHistoryField, point.history);
    putAll(entry + kMeansField, point.means);
}

void ShortenSeekTable::watch(std::span<const uint8_t> words)
{
    const uint64_t start = kStreamOffset + m_watched;
    m_watched += words.size();
    for (; m_firstWithoutWord < m_entries.size(); m_firstWithoutWord += kEntryBytes) {
        uint8_t *const entry = m_entries.data() + m_firstWithoutWord;
        const uint64_t offset = wordOffset(entry) - start;
        if (offset >= words.size())
            return;
        const uint8_t *const word = words.data() + offset;
        putLittleEndian16(entry + kWordField, static_cast<uint16_t>(word[2] << 8 | word[3]));
        putLittleEndian16(entry + kWordField + 2, static_cast<uint16_t>(word[0] << 8 | word[1]));
    }
}

std::vector<uint8_t> ShortenSeekTable::finish(uint64_t streamBytes)
{
    if (m_isTooLong || m_entries.empty() || streamBytes > kMaxNumber)
        return {};
    for (size_t at = 0; at < m_entries.size(); at += kEntryBytes) {
        uint8_t *const entry = m_entries.data() + at;
        const uint64_t fillStart = littleEndian32(entry + kFillStartField);
        const uint64_t fillEnd = std::min(fillStart + kReaderBufferBytes, streamBytes);
        putLittleEndian32(entry + kFillEndField, static_cast<uint32_t>(fillEnd));
        putLittleEndian16(entry + kBytesLeftField,
                          static_cast<uint16_t>(fillEnd - fillStart - littleEndian16(entry + kBytesTakenField)));
    }
    const size_t tableBytes = kTableHeaderBytes + m_entries.size() + kTrailerBytes;
    std::vector<uint8_t> table(tableBytes);
    const auto putName = [](uint8_t *at, std::string_view name) { std::copy(name.begin(), name.end(), at); };
    putName(table.data(), "SEEK");
    putLittleEndian32(table.data() + 4, kRevision);
    putLittleEndian32(table.data() + 8, static_cast<uint32_t>(streamBytes));
    std::copy(m_entries.begin(), m_entries.end(), table.begin() + kTableHeaderBytes);
    uint8_t *const trailer = table.data() + kTableHeaderBytes + m_entries.size();
    putLittleEndian32(trailer, static_cast<uint32_t>(tableBytes));
    putName(trailer + 4, "SHNAMPSK");
    return table;
}

} // namespace nurv::shorten
