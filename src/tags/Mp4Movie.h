// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/Mp4Boxes.h"
#include "tags/Mp4ChunkOffsets.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace nurv {

/// The movie box of an MPEG-4 file, in memory: the metadata items and the places
/// of the sound in the file.
///
///     moov ─┬─ trak ── mdia ── minf ── stbl ── stco / co64   the chunk offsets
///           └─ udta ── meta ── ilst ── items                 the metadata
///
/// Everything that is not changed keeps its bytes: foreign items, items of kinds that
/// nobody knows, further pictures. A plain value.
class Mp4Movie {
public:
    /// One `data` box of an item.
    struct Value {
        std::uint32_t type = 0; ///< well-known type: 1 UTF-8, 2 UTF-16, 13 JPEG, 14 PNG, ...
        QByteArray bytes;
    };
    struct NumberAndTotal {
        std::uint16_t number = 0;
        std::uint16_t total = 0;
    };

    /// A metadata item with all its values.
    struct Item {
        FourCharacters name = 0;
        QString ownName; ///< of a free-form item, whose four characters are "----"
        std::vector<Value> values;
    };
    /// A metadata item as it stands in the file.
    struct RawItem {
        QString name;                           ///< "\251nam", "----:com.apple.iTunes:MOOD"
        std::optional<QString> text = {};       ///< its values, when they are text
        QByteArray box;
    };
    /// A box that is neither sound nor metadata item.
    struct Part {
        FourCharacters type = 0; ///< of a track, what its handler says that it holds
        QByteArray contents;
    };

    /// The movie of the file; nothing when it has not exactly one, and when that is
    /// damaged, compressed or beyond 128 MiB.
    [[nodiscard]] static std::optional<Mp4Movie> of(TagLib::IOStream &file, const Mp4Layout &layout);

    /// The first value of the items of this name.
    [[nodiscard]] std::optional<Value> value(FourCharacters item) const;
    /// The value as text, up to the first zero character.
    [[nodiscard]] std::optional<QString> text(FourCharacters item) const;
    [[nodiscard]] static QString textOf(const Value &value);
    /// The value as a number and its total; what is missing is 0.
    [[nodiscard]] NumberAndTotal numbers(FourCharacters item) const;

    /// All metadata items; nothing when the metadata is damaged or of another kind.
    [[nodiscard]] std::optional<std::vector<Item>> items() const;
    /// The same with their bytes.
    [[nodiscard]] std::optional<std::vector<RawItem>> rawItems() const;
    /// What else the movie holds besides its sound: other user data, other metadata, tracks of text and
    /// pictures. Fillers and what describes the sound are left out. Nothing when it is damaged.
    [[nodiscard]] std::optional<std::vector<Part>> otherParts() const;

    // The setters replace all values of the item and make the item where there is none. They
    // return false, and change nothing, when the metadata is damaged or of another kind.
    [[nodiscard]] bool setText(FourCharacters item, const QString &text);
    /// `size` is how many bytes this item's value has, at least 6.
    [[nodiscard]] bool setNumbers(FourCharacters item, NumberAndTotal numbers, int size);
    /// Puts the picture in the place of the first one; others stay, also those in further items.
    [[nodiscard]] bool setFirstPicture(const QByteArray &png);
    [[nodiscard]] bool removeItem(FourCharacters item);
    /// Puts these boxes in the place of all items.
    [[nodiscard]] bool setRawItems(const QByteArray &boxes);
    /// Whether the bytes are one box with boxes inside, as an item is.
    [[nodiscard]] static bool isItem(const QByteArray &box);

    /// Why no byte of this file may move, as the end of a sentence; nothing when the chunk offsets are
    /// all places that its movie names.
    [[nodiscard]] std::optional<QString> foreignPlaces() const;
    /// Lets the chunk offsets follow the sound (Mp4ChunkOffsets). Returns nothing on success, else why
    /// not; the movie must then no longer be used.
    [[nodiscard]] std::optional<QString> moveChunkOffsets(const Mp4ChunkOffsets::Move &move);

    /// The whole box, as it is written.
    [[nodiscard]] QByteArray box() const;
    /// Whether that is what stands in the file now.
    [[nodiscard]] bool standsIn(TagLib::IOStream &file, const Mp4Box &oldBox) const;
    /// Whether it fits into the limit that `of` sets.
    [[nodiscard]] bool fitsTheLimit() const;
    /// Whether movie fragments may follow.
    [[nodiscard]] bool isFragmented() const;

private:
    /// The boxes on the way to the items, as far as they exist.
    struct Path {
        std::optional<Mp4Box> userData;
        std::optional<Mp4Box> metadata;
        std::optional<Mp4Box> items;
        bool hasHandler = false; ///< the metadata says of which kind it is
        bool isUsable = true;    ///< false: damaged, or the metadata is of another kind
    };

    explicit Mp4Movie(QByteArray contents) : m_contents(std::move(contents)) {}
    [[nodiscard]] Path findItems() const;
    /// The boxes of the metadata items; nothing when they are damaged.
    [[nodiscard]] std::optional<Mp4Boxes> itemBoxes() const;
    /// The boxes inside the item; empty when there are none or they are damaged.
    [[nodiscard]] Mp4Boxes valueBoxes(const Mp4Box &item) const;
    [[nodiscard]] Item itemIn(const Mp4Box &box) const;
    [[nodiscard]] QString fullNameOf(const Mp4Box &item) const;
    [[nodiscard]] std::optional<Value> valueIn(const Mp4Box &data) const;
    [[nodiscard]] Part partOf(const Mp4Box &box) const;
    /// What the track's handler says that it holds; 0 when it does not.
    [[nodiscard]] FourCharacters kindOfTrack(const Mp4Box &track) const;
    [[nodiscard]] bool setItem(FourCharacters item, const QByteArray &newBox);
    void replaceItem(const Mp4Box &item, const QByteArray &newBox);
    void replaceItems(const Path &path, const QByteArray &items);

    QByteArray m_contents; ///< of the box, without its head
};

} // namespace nurv
