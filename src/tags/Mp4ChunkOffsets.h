// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/Mp4Boxes.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace nurv {

/// The tables of a movie that say where in the file the chunks of its tracks lie.
///
///     trak ── mdia ── minf ─┬─ stbl ── stco / co64   offsets of 32 or 64 bits
///                           └─ dinf ── dref          the files that they are offsets of
///
/// A table of 32 bits whose offsets outgrow it becomes one of 64. A plain value.
class Mp4ChunkOffsets {
public:
    /// Where a byte of the file will stand once the movie box, with its head, has `movieSize` bytes;
    /// nothing when there is no sound at that place.
    using Move = std::function<std::optional<std::uint64_t>(std::uint64_t offset, std::int64_t movieSize)>;

    /// `movie` are the contents of a movie box.
    explicit Mp4ChunkOffsets(QByteArray movie) : m_movie(std::move(movie)) {}
    [[nodiscard]] QByteArray takeMovie() { return std::exchange(m_movie, {}); }

    /// Why offsets that follow the sound are not enough, as the end of a sentence: the movie names other
    /// files, or places by means of other boxes. Nothing when they are.
    [[nodiscard]] static std::optional<QString> foreignPlaces(const QByteArray &movie);

    /// Puts what `move` gives in the place of each offset. It may be asked more than once for each,
    /// since a table that grows moves the sound on. Returns nothing on success, else why not; the
    /// movie must then no longer be used.
    [[nodiscard]] std::optional<QString> follow(const Move &move);

private:
    struct Table {
        Mp4Box box;
        std::int64_t width = 0; ///< of an offset, in bytes
        std::uint32_t count = 0;

        [[nodiscard]] std::int64_t place(std::uint32_t index) const;
    };
    using Tables = std::vector<Table>;
    enum class Fit { Fits, TooNarrow, NoSound };

    [[nodiscard]] std::optional<Tables> findTables() const;
    [[nodiscard]] std::uint64_t offsetAt(const Table &table, std::uint32_t index) const;
    [[nodiscard]] Fit fitOf(const Table &table, const Move &move, std::int64_t movieSize) const;
    void write(const Table &table, const Move &move, std::int64_t movieSize);
    /// The bytes from `begin` to `end`, boxes at this depth of the movie, with the tables among and
    /// inside them made wide. Tables are in the order of their places.
    [[nodiscard]] QByteArray widened(std::int64_t begin, std::int64_t end, std::size_t depth,
                                     const Tables &tables) const;
    [[nodiscard]] QByteArray wideBox(const Table &table) const;

    QByteArray m_movie;
};

} // namespace nurv
