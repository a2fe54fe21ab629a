// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TrailingTags.h"

#include "base/NurvFailure.h"
#include "tags/Id3Tag.h"
#include "tags/MetadataFieldNames.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMostTagsInARow = 10; // of each kind
constexpr std::int64_t kId3v1Size = 128;
constexpr std::int64_t kId3v2HeadSize = 10;
constexpr std::int64_t kLyricsFooterSize = 15; // six digits and a mark
constexpr std::int64_t kApeFooterSize = 32;
constexpr qsizetype kApeItemHeadSize = 8; // size of the value, flags
constexpr quint32 kApeVersion1 = 1000;
constexpr quint32 kApeHasHeader = 0x80000000;
constexpr quint32 kApeItemKind = 6;
constexpr quint32 kApeBinaryItem = 2;

/// An item of an APE tag.
void addApeItem(const QByteArray &key, const QByteArray &value, bool isBinary, bool isLatin1, MetadataCollector &found)
{
    const QString field = metadataFields::fromWords(QString::fromUtf8(key));
    if (!isBinary) {
        found.addText(field, isLatin1 ? QString::fromLatin1(value) : QString::fromUtf8(value));
    } else if (field.startsWith(u"COVER ART"_s)) {
        // The name of a file stands before the picture.
        found.addPicture(value.mid(value.indexOf('\0') + 1));
    } else {
        found.addBytes(field, value);
    }
}

void readApeItems(const QByteArray &items, bool isLatin1, MetadataCollector &found)
{
    for (qsizetype position = 0; position < items.size();) {
        const qsizetype keyAt = position + kApeItemHeadSize;
        const qsizetype keyEnd = items.indexOf('\0', std::min(keyAt, items.size()));
        if (keyEnd < 0 || keyEnd == keyAt)
            throw NurvFailure(u"its APE tag is damaged"_s);
        const qint64 size = littleEndianAt<quint32>(items, position);
        const auto flags = littleEndianAt<quint32>(items, position + 4);
        if (size > items.size() - keyEnd - 1)
            throw NurvFailure(u"its APE tag is damaged"_s);
        addApeItem(items.mid(keyAt, keyEnd - keyAt), items.mid(keyEnd + 1, size),
                   (flags & kApeItemKind) == kApeBinaryItem, isLatin1, found);
        position = keyEnd + 1 + size;
    }
}

/// Each of these reads the tag that ends at `end`, if one does, and returns where it starts;
/// `end` without one.
class TagsAtEnd {
public:
    TagsAtEnd(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
        : m_bytes(bytes), m_begin(begin), m_found(found)
    {
    }

    [[nodiscard]] std::int64_t id3v1(std::int64_t end)
    {
        if (end - m_begin < kId3v1Size || m_bytes.peek(end - kId3v1Size, 3) != "TAG")
            return end;
        m_found.addId3v1(m_bytes.read(end - kId3v1Size, kId3v1Size));
        return end - kId3v1Size;
    }

    [[nodiscard]] std::int64_t lyrics(std::int64_t end)
    {
        const QByteArray footer = before(end, kLyricsFooterSize);
        if (!footer.endsWith("LYRICS200"))
            return end;
        bool isNumber = false;
        const int size = footer.left(6).toInt(&isNumber);
        if (!isNumber || size < 0 || size > end - m_begin - kLyricsFooterSize)
            throw NurvFailure(u"its Lyrics3 tag is damaged"_s);
        const std::int64_t start = end - kLyricsFooterSize - size;
        m_found.addBytes(u"LYRICS3"_s, m_bytes.read(start, size));
        return start;
    }

    [[nodiscard]] std::int64_t ape(std::int64_t end)
    {
        const QByteArray footer = before(end, kApeFooterSize);
        if (!footer.startsWith("APETAGEX"))
            return end;
        const auto version = littleEndianAt<quint32>(footer, 8);
        const qint64 size = littleEndianAt<quint32>(footer, 12); // with the footer, without the header
        const bool hasHeader = (littleEndianAt<quint32>(footer, 20) & kApeHasHeader) != 0;
        const std::int64_t start = end - size - (hasHeader ? kApeFooterSize : 0);
        if (size < kApeFooterSize || start < m_begin)
            throw NurvFailure(u"its APE tag is damaged"_s);
        readApeItems(m_bytes.read(end - size, size - kApeFooterSize), version <= kApeVersion1, m_found);
        return start;
    }

    [[nodiscard]] std::int64_t id3v2(std::int64_t end)
    {
        const QByteArray footer = before(end, kId3v2HeadSize);
        if (!footer.startsWith("3DI"))
            return end;
        // The footer repeats the header.
        const MetadataBytes head("ID3" + footer.mid(3));
        const std::int64_t size = id3v2SizeAt(head, 0);
        const std::int64_t start = end - size;
        if (size < 2 * kId3v2HeadSize || start < m_begin || id3v2SizeAt(m_bytes, start) != size)
            return end;
        readId3v2(m_bytes, start, m_found);
        return start;
    }

private:
    [[nodiscard]] QByteArray before(std::int64_t end, std::int64_t size) const
    {
        return end - m_begin < size ? QByteArray() : m_bytes.peek(end - size, size);
    }

    const MetadataBytes &m_bytes;
    std::int64_t m_begin;
    MetadataCollector &m_found;
};

} // namespace

std::int64_t readTrailingTags(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found)
{
    TagsAtEnd tags(bytes, begin, found);
    std::int64_t end = bytes.size();
    for (int i = 0; i < kMostTagsInARow; ++i) {
        const std::int64_t start = tags.id3v2(tags.ape(tags.lyrics(tags.id3v1(end))));
        if (start == end)
            return end;
        end = start;
    }
    throw NurvFailure(u"it has too many tags at its end"_s);
}

} // namespace nurv
