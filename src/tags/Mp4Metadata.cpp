// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/Mp4Metadata.h"

#include "base/NurvFailure.h"
#include "tags/MetadataBytes.h"
#include "tags/MetadataFieldNames.h"
#include "tags/Mp4Movie.h"
#include "tags/TagEditStream.h"

#include <id3v1genres.h>

#include <algorithm>
#include <array>
#include <new>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr FourCharacters kFreeForm = fourCharacters("----");
constexpr FourCharacters kPicture = fourCharacters("covr");
constexpr FourCharacters kTrack = fourCharacters("trkn");
constexpr FourCharacters kDisk = fourCharacters("disk");
constexpr FourCharacters kGenreNumber = fourCharacters("gnre");

// Well-known types of values.
enum ValueType { Implicit = 0, Utf8 = 1, Utf16 = 2, Integer = 21 };

// What a sound file is made of at its top level.
constexpr std::array kStructure = {fourCharacters("ftyp"), fourCharacters("styp"), fourCharacters("moov"),
                                   fourCharacters("mdat"), fourCharacters("moof"), fourCharacters("mfra"),
                                   fourCharacters("sidx"), fourCharacters("ssix"), fourCharacters("pdin")};

QByteArray nameOf(FourCharacters type)
{
    QByteArray name(4, '\0');
    qToBigEndian(type, name.data());
    return name;
}

void addNumberAndTotal(const QString &field, const QByteArray &bytes, MetadataCollector &found)
{
    const auto numberAt = [&](qsizetype offset) {
        return bytes.size() >= offset + 2 ? bigEndianAt<quint16>(bytes, offset) : quint16{0};
    };
    found.addNumbers(field, numberAt(2), numberAt(4));
}

void addInteger(const QString &field, const QByteArray &bytes, MetadataCollector &found)
{
    quint64 number = 0;
    for (const char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    // Flags that are not set, and counts of nothing.
    if (number != 0)
        found.addText(field, QString::number(number));
}

void addValue(FourCharacters item, const QString &field, const Mp4Movie::Value &value, MetadataCollector &found)
{
    const bool isText = value.type == Utf8 || value.type == Utf16;
    if (item == kPicture)
        found.addPicture(value.bytes);
    else if (item == kTrack || item == kDisk)
        addNumberAndTotal(field, value.bytes, found);
    else if (item == kGenreNumber && value.bytes.size() >= 2)
        found.addText(
            field, QString::fromStdString(TagLib::ID3v1::genre(bigEndianAt<quint16>(value.bytes, 0) - 1).to8Bit(true)));
    else if (isText || (item >> 24 == 0xa9U && value.type == Implicit))
        found.addText(field, Mp4Movie::textOf(value));
    else if ((value.type == Integer || value.type == Implicit) && value.bytes.size() <= 8)
        addInteger(field, value.bytes, found);
    else
        found.addBytes(field, value.bytes);
}

void addMovie(const Mp4Movie &movie, MetadataCollector &found)
{
    const std::optional<std::vector<Mp4Movie::Item>> items = movie.items();
    const std::optional<std::vector<Mp4Movie::Part>> parts = movie.otherParts();
    if (!items || !parts)
        throw NurvFailure(u"its metadata items are damaged or of another kind"_s);
    for (const Mp4Movie::Item &item : *items) {
        const QString field = item.name == kFreeForm ? metadataFields::fromWords(item.ownName)
                                                     : metadataFields::fromMp4Item(nameOf(item.name));
        for (const Mp4Movie::Value &value : item.values)
            addValue(item.name, field, value, found);
    }
    for (const Mp4Movie::Part &part : *parts)
        found.addChunk(nameOf(part.type), metadataDigest(part.contents));
}

/// Boxes that stand beside the movie.
void addOtherBoxes(const MetadataBytes &bytes, const Mp4Layout &layout, MetadataCollector &found)
{
    for (const Mp4Box &box : layout.boxes) {
        if (!isMp4Filler(box.type) && std::find(kStructure.begin(), kStructure.end(), box.type) == kStructure.end())
            found.addChunk(nameOf(box.type), bytes.digest(box.contents(), box.size - box.headerSize));
    }
}

} // namespace

std::int64_t readMp4Metadata(const QString &path, MetadataCollector &found)
{
    try {
        TagEditStream stream(path, TagEditStream::Access::Read);
        const Mp4Layout layout = Mp4Layout::of(stream);
        const std::optional<Mp4Movie> movie = Mp4Movie::of(stream, layout);
        if (!movie)
            throw NurvFailure(u"its movie box is missing or damaged"_s);
        addMovie(*movie, found);
        addOtherBoxes(MetadataBytes::ofFile(path), layout, found);
        return layout.tail;
    } catch (const std::bad_alloc &) {
        throw NurvFailure(u"there is not enough memory"_s);
    }
}

} // namespace nurv
