// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/ApeItems.h"

#include "base/NurvFailure.h"
#include "tags/TagEditStream.h"
#include "tags/TagLibText.h"
#include "text/PrintableText.h"
#include "text/Utf8Text.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kFooterBytes = 32;
constexpr std::int64_t kId3v1Bytes = 128;
constexpr unsigned int kItemHeadBytes = 8;

[[noreturn]] void failAsDamaged()
{
    throw NurvFailure(u"its APE tag is damaged"_s);
}

unsigned int numberAt(const TagLib::ByteVector &bytes, unsigned int place)
{
    return bytes.mid(place, 4).toUInt(false);
}

TagLib::ByteVector readAt(TagEditStream &stream, std::int64_t position, std::int64_t size)
{
    stream.seek(static_cast<TagEditStream::Offset>(position));
    return stream.readBlock(static_cast<TagEditStream::Size>(size));
}

/// The footer that ends there; nothing without one.
std::optional<TagLib::ByteVector> footerBefore(TagEditStream &stream, std::int64_t end)
{
    if (end < kFooterBytes)
        return std::nullopt;
    const TagLib::ByteVector footer = readAt(stream, end - kFooterBytes, kFooterBytes);
    return footer.startsWith("APETAGEX") ? std::optional(footer) : std::nullopt;
}

/// Whether TagLib takes it, as the specification of APE tags has it.
bool isKey(const TagLib::ByteVector &key)
{
    constexpr unsigned int kShortest = 2;
    constexpr unsigned int kLongest = 255;
    static const std::array reserved{QByteArray("ID3"), QByteArray("TAG"), QByteArray("OGGS"), QByteArray("MP+")};
    return key.size() >= kShortest && key.size() <= kLongest
           && std::all_of(key.begin(), key.end(), [](char letter) { return letter >= ' ' && letter <= '~'; })
           && std::find(reserved.begin(), reserved.end(), qtBytes(key).toUpper()) == reserved.end();
}

void refuseUnreadableItemsOf(const TagLib::ByteVector &items, unsigned int count)
{
    constexpr unsigned int kKindBits = 6; // 0: a text
    unsigned int position = 0;
    QSet<QByteArray> keys;
    for (unsigned int i = 0; i < count; ++i) {
        if (items.size() - position < kItemHeadBytes)
            failAsDamaged();
        const unsigned int size = numberAt(items, position);
        const unsigned int flags = numberAt(items, position + 4);
        const int keyEnd = items.find('\0', position + kItemHeadBytes);
        if (keyEnd < 0)
            failAsDamaged();
        const unsigned int value = static_cast<unsigned int>(keyEnd) + 1;
        if (size > items.size() - value)
            failAsDamaged();
        const TagLib::ByteVector key =
            items.mid(position + kItemHeadBytes, static_cast<unsigned int>(keyEnd) - position - kItemHeadBytes);
        const QString shown = printableLine(QString::fromLatin1(qtBytes(key)));
        if (!isKey(key))
            throw NurvFailure(u"Its item \"%1\" has a name that APE tags do not take, and would be lost."_s.arg(shown));
        const QByteArray upperKey = qtBytes(key).toUpper();
        if (keys.contains(upperKey))
            throw NurvFailure(u"Its item %1 is there twice, and one of them would be lost."_s.arg(shown));
        keys.insert(upperKey);
        if ((flags & kKindBits) == 0 && !fromStrictUtf8(qtBytes(items.mid(value, size))))
            throw NurvFailure(u"Its item %1 is not in UTF-8, as items of APE tags have to be, and would be lost."_s.arg(shown));
        position = value + size;
    }
}

} // namespace

void refuseUnreadableItems(TagEditStream &stream)
{
    std::int64_t end = stream.fileLength();
    std::optional<TagLib::ByteVector> footer = footerBefore(stream, end);
    if (!footer && end >= kId3v1Bytes && readAt(stream, end - kId3v1Bytes, 3) == "TAG") {
        end -= kId3v1Bytes;
        footer = footerBefore(stream, end);
    }
    if (!footer)
        return;
    // The items and the footer, without a header.
    const std::int64_t size = numberAt(*footer, 12);
    if (size < kFooterBytes || size > end)
        failAsDamaged();
    const TagLib::ByteVector items = readAt(stream, end - size, size - kFooterBytes);
    if (static_cast<std::int64_t>(items.size()) != size - kFooterBytes)
        failAsDamaged();
    refuseUnreadableItemsOf(items, numberAt(*footer, 16));
}

} // namespace nurv
