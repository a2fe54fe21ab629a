// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsMessage.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::uint64_t kNumberSize = 8;
constexpr std::uint64_t kMostSide = 65'536;
constexpr std::uint64_t kMostDepth = 256;

constexpr std::array kTexts = {&TagsObject::titleText,      &TagsObject::artistText,    &TagsObject::albumArtistText,
                               &TagsObject::dateText,       &TagsObject::albumText,     &TagsObject::commentText,
                               &TagsObject::discText,       &TagsObject::discTotalText, &TagsObject::trackText,
                               &TagsObject::trackTotalText, &TagsObject::genreText,     &TagsObject::composerText,
                               &TagsObject::encoderSettings};
constexpr std::array kSetters = {
    &TagsObject::setTitleText,      &TagsObject::setArtistText,    &TagsObject::setAlbumArtistText,
    &TagsObject::setDateText,       &TagsObject::setAlbumText,     &TagsObject::setCommentText,
    &TagsObject::setDiscText,       &TagsObject::setDiscTotalText, &TagsObject::setTrackText,
    &TagsObject::setTrackTotalText, &TagsObject::setGenreText,     &TagsObject::setComposerText,
    &TagsObject::setEncoderSettings};

[[noreturn]] void failAsDamaged()
{
    throw DamagedMessage(u"the answer about its tags is damaged"_s);
}

} // namespace

void TagsMessageWriter::putNumber(std::uint64_t number)
{
    const quint64 little = qToLittleEndian<quint64>(number);
    m_bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

void TagsMessageWriter::putBytes(const QByteArray &bytes)
{
    putNumber(static_cast<std::uint64_t>(bytes.size()));
    m_bytes.append(bytes);
}

void TagsMessageWriter::putText(const QString &text)
{
    // As it is: not every text of a file can be told in UTF-8.
    putBytes(QByteArray::fromRawData(reinterpret_cast<const char *>(text.utf16()),
                                     text.size() * static_cast<qsizetype>(sizeof(char16_t))));
}

void TagsMessageWriter::putOptional(const TagsObject::Text &text)
{
    putNumber(text ? 1 : 0);
    if (text)
        putText(*text);
}

void TagsMessageWriter::putRecord(const TagsObject &record)
{
    for (const auto text : kTexts)
        putOptional((record.*text)());
    const QMap<QString, QString> &customTags = record.customTagsDictionary();
    putNumber(static_cast<std::uint64_t>(customTags.size()));
    for (auto tag = customTags.cbegin(); tag != customTags.cend(); ++tag) {
        putText(tag.key());
        putText(tag.value());
    }
    putPicture(record.albumArt());
    putOptional(record.albumArtFault());
}

void TagsMessageWriter::putPicture(const AlbumArt &picture)
{
    putNumber(picture ? 1 : 0);
    if (!picture)
        return;
    putNumber(static_cast<std::uint64_t>(std::max(0, picture->size().width())));
    putNumber(static_cast<std::uint64_t>(std::max(0, picture->size().height())));
    putNumber(static_cast<std::uint64_t>(std::max(0, picture->depth())));
    putBytes(picture->bytes());
}

void TagsMessageWriter::putInventory(const MetadataInventory &inventory)
{
    putNumber(static_cast<std::uint64_t>(inventory.tags.size()));
    for (auto tag = inventory.tags.cbegin(); tag != inventory.tags.cend(); ++tag) {
        putText(tag.key());
        putNumber(static_cast<std::uint64_t>(tag->size()));
        for (const QString &value : *tag)
            putText(value);
    }
    putNumber(static_cast<std::uint64_t>(inventory.pictures.size()));
    for (const QByteArray &picture : inventory.pictures)
        putBytes(picture);
    putNumber(static_cast<std::uint64_t>(inventory.foreignChunks.size()));
    for (auto chunk = inventory.foreignChunks.cbegin(); chunk != inventory.foreignChunks.cend(); ++chunk) {
        putText(chunk.key());
        putNumber(static_cast<std::uint64_t>(chunk->size()));
        for (const QByteArray &digest : *chunk)
            putBytes(digest);
    }
}

void TagsMessageWriter::putStoredTags(const StoredTags &tags)
{
    putNumber(static_cast<std::uint64_t>(tags.size()));
    for (const StoredTag &tag : tags) {
        putNumber(static_cast<std::uint64_t>(tag.holder));
        putText(tag.name);
        putOptional(tag.text);
        putBytes(tag.data);
    }
}

void TagsMessageWriter::putEdits(const TagEditStream::Edits &edits)
{
    putNumber(edits.isEdited ? 1 : 0);
    putNumber(edits.pieces.size());
    for (const TagEditStream::Piece &piece : edits.pieces) {
        putNumber(piece.isNew ? 1 : 0);
        putNumber(static_cast<std::uint64_t>(piece.offset));
        putNumber(static_cast<std::uint64_t>(piece.length));
    }
    putBytes(QByteArray::fromRawData(edits.newBytes.data(), static_cast<qsizetype>(edits.newBytes.size())));
}

std::uint64_t TagsMessageReader::takeNumber()
{
    if (static_cast<std::uint64_t>(m_bytes.size() - m_position) < kNumberSize)
        failAsDamaged();
    const auto number = qFromLittleEndian<quint64>(m_bytes.constData() + m_position);
    m_position += kNumberSize;
    return number;
}

std::uint64_t TagsMessageReader::takeNumber(std::uint64_t largest)
{
    const std::uint64_t number = takeNumber();
    if (number > largest)
        failAsDamaged();
    return number;
}

std::uint64_t TagsMessageReader::takeCount(std::uint64_t smallestPart)
{
    const std::uint64_t count = takeNumber();
    if (count > static_cast<std::uint64_t>(m_bytes.size() - m_position) / smallestPart)
        failAsDamaged();
    return count;
}

QByteArrayView TagsMessageReader::takeView()
{
    const auto size = static_cast<qsizetype>(takeCount(1));
    m_position += size;
    return QByteArrayView(m_bytes).sliced(m_position - size, size);
}

QByteArray TagsMessageReader::takeBytes()
{
    return takeView().toByteArray();
}

QString TagsMessageReader::takeText()
{
    const QByteArrayView bytes = takeView();
    if (bytes.size() % 2 != 0)
        failAsDamaged();
    QString text(bytes.size() / 2, Qt::Uninitialized);
    std::copy_n(bytes.data(), bytes.size(), reinterpret_cast<char *>(text.data()));
    return text;
}

TagsObject::Text TagsMessageReader::takeOptional()
{
    return takeNumber(1) == 1 ? TagsObject::Text(takeText()) : std::nullopt;
}

TagsObject TagsMessageReader::takeRecord()
{
    TagsObject record;
    for (const auto setText : kSetters)
        (record.*setText)(takeOptional());
    for (std::uint64_t left = takeCount(2 * kNumberSize); left > 0; --left) {
        const QString key = takeText();
        record.customTagsDictionary().insert(key, takeText());
    }
    AlbumArt picture = takePicture();
    record.setAlbumArt(std::move(picture), takeOptional());
    return record;
}

AlbumArt TagsMessageReader::takePicture()
{
    if (takeNumber(1) == 0)
        return nullptr;
    const auto width = static_cast<int>(takeNumber(kMostSide));
    const auto height = static_cast<int>(takeNumber(kMostSide));
    const auto depth = static_cast<int>(takeNumber(kMostDepth));
    return std::make_shared<const CoverPicture>(takeBytes(), QSize(width, height), depth);
}

MetadataInventory TagsMessageReader::takeInventory()
{
    MetadataInventory inventory;
    for (std::uint64_t left = takeCount(2 * kNumberSize); left > 0; --left) {
        QStringList &values = inventory.tags[takeText()];
        for (std::uint64_t more = takeCount(kNumberSize); more > 0; --more)
            values.append(takeText());
    }
    for (std::uint64_t left = takeCount(kNumberSize); left > 0; --left)
        inventory.pictures.append(takeBytes());
    for (std::uint64_t left = takeCount(2 * kNumberSize); left > 0; --left) {
        QByteArrayList &digests = inventory.foreignChunks[takeText()];
        for (std::uint64_t more = takeCount(kNumberSize); more > 0; --more)
            digests.append(takeBytes());
    }
    return inventory;
}

StoredTags TagsMessageReader::takeStoredTags()
{
    constexpr auto kLastHolder = static_cast<std::uint64_t>(StoredTag::Holder::Mp4);
    StoredTags tags;
    for (std::uint64_t left = takeCount(4 * kNumberSize); left > 0; --left) {
        StoredTag tag{.holder = static_cast<StoredTag::Holder>(takeNumber(kLastHolder))};
        tag.name = takeText();
        tag.text = takeOptional();
        tag.data = takeBytes();
        tags.append(tag);
    }
    return tags;
}

TagEditStream::Edits TagsMessageReader::takeEdits(std::int64_t fileLength)
{
    TagEditStream::Edits edits;
    edits.isEdited = takeNumber(1) == 1;
    std::int64_t total = 0;
    for (std::uint64_t left = takeCount(3 * kNumberSize); left > 0; --left) {
        TagEditStream::Piece piece;
        piece.isNew = takeNumber(1) == 1;
        constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        piece.offset = static_cast<std::int64_t>(takeNumber(kMost));
        piece.length = static_cast<std::int64_t>(takeNumber(kMost));
        if (__builtin_add_overflow(total, piece.length, &total))
            failAsDamaged();
        edits.pieces.push_back(piece);
    }
    const QByteArrayView newBytes = takeView();
    edits.newBytes.assign(newBytes.data(), static_cast<std::size_t>(newBytes.size()));
    for (const TagEditStream::Piece &piece : edits.pieces) {
        const std::int64_t room = piece.isNew ? static_cast<std::int64_t>(edits.newBytes.size()) : fileLength;
        if (piece.length == 0 || piece.offset > room || piece.length > room - piece.offset)
            failAsDamaged();
    }
    // Nobody's tags double a file; what its ranges repeated is no edit.
    if (total > 2 * fileLength + static_cast<std::int64_t>(edits.newBytes.size()))
        failAsDamaged();
    return edits;
}

void TagsMessageReader::expectEnd() const
{
    if (m_position != m_bytes.size())
        failAsDamaged();
}

} // namespace nurv
