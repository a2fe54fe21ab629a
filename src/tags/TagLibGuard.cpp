// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagLibGuard.h"

#include "tags/Id3v2Scan.h"

#include <id3v2header.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20;
constexpr std::int64_t kMostBytes = 64 * kMiB;
constexpr int kMostBlocks = 200'000;
constexpr unsigned int kMostFields = 10'000;

constexpr unsigned int kId3HeaderSize = 10;
constexpr unsigned int kFlacHeadSize = 4;
constexpr int kFlacComment = 4;
constexpr unsigned int kApeFooterSize = 32;
constexpr unsigned int kApeSizeOffset = 12;
constexpr unsigned int kApeCountOffset = 16;
constexpr unsigned int kSmallestApeField = 11;
constexpr unsigned int kSmallestVorbisField = 4;

/// As many fields as a Vorbis comment says it has, and has room for.
unsigned int vorbisFieldCount(const TagLib::ByteVector &comment)
{
    if (comment.size() < 8)
        return 0;
    const unsigned int vendor = comment.toUInt(0U, false);
    return vendor > comment.size() - 8
        ? 0
        : std::min(comment.toUInt(4 + vendor, false), comment.size() / kSmallestVorbisField);
}

unsigned int apeFieldCount(const TagLib::ByteVector &footer)
{
    return std::min(footer.toUInt(kApeCountOffset, false), footer.toUInt(kApeSizeOffset, false) / kSmallestApeField);
}

} // namespace

bool TagLibGuard::mayRead(std::int64_t length)
{
    if (m_refusal)
        return false;
    ++m_blocks;
    m_bytes += length;
    if (m_bytes > kMostBytes)
        m_refusal = u"its tags are not to be trusted: they have more than %1 MiB"_s.arg(kMostBytes / kMiB);
    else if (m_blocks > kMostBlocks)
        m_refusal = u"its tags are not to be trusted: they have more than %1 parts"_s.arg(kMostBlocks);
    return !m_refusal;
}

bool TagLibGuard::mayHave(std::int64_t position, const TagLib::ByteVector &block)
{
    if (!m_refusal)
        m_refusal = faultOf(position, block);
    if (!m_refusal && !m_unreadFrame && m_last.startsWith("ID3") && isId3v2(position, block))
        m_unreadFrame = firstUnreadId3v2Frame(m_last, block);
    const bool canBeHead = block.size() == kId3HeaderSize || block.size() == kFlacHeadSize;
    m_last = canBeHead ? block : TagLib::ByteVector();
    m_lastEnd = position + block.size();
    return !m_refusal;
}

bool TagLibGuard::isId3v2(std::int64_t position, const TagLib::ByteVector &block) const
{
    return position == m_lastEnd && m_last.size() == kId3HeaderSize
           && block.size() <= TagLib::ID3v2::Header(m_last).tagSize();
}

std::optional<QString> TagLibGuard::faultOf(std::int64_t position, const TagLib::ByteVector &block) const
{
    const auto tooManyFields = [](unsigned int count) {
        return count > kMostFields
            ? std::optional(u"its tags are not to be trusted: they have more than %1 fields"_s.arg(kMostFields))
            : std::nullopt;
    };
    if (block.size() == kApeFooterSize && block.startsWith("APETAGEX"))
        return tooManyFields(apeFieldCount(block));
    if (position != m_lastEnd || m_last.isEmpty())
        return std::nullopt;
    if (isId3v2(position, block))
        return reasonToRefuseId3v2(m_last, block);
    if (m_last.size() == kFlacHeadSize && (m_last[0] & 0x7f) == kFlacComment && block.size() <= m_last.toUInt(1U, 3U))
        return tooManyFields(vorbisFieldCount(block));
    return std::nullopt;
}

} // namespace nurv
