// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <tbytevector.h>

#include <cstdint>
#include <optional>

namespace nurv {

/// Stands between a file and TagLib: sees every block that TagLib asks for before it gets it.
///
///     file ──> block ──> guard ──> TagLib
///                          └──> refusal: from then on TagLib gets nothing more
///
/// What TagLib reads of a tag it keeps, parses without limits and partly multiplies. So a file has
/// so many bytes and blocks for it, an ID3v2 tag is scanned (Id3v2Scan), and Vorbis comments and APE
/// tags may not have more than 10,000 fields. Each is known by how TagLib asks: head first, then as
/// many bytes as that says. Belongs to one thread at a time.
class TagLibGuard {
public:
    /// Whether TagLib may ask for so many bytes more. False sets the refusal.
    [[nodiscard]] bool mayRead(std::int64_t length);
    /// Whether TagLib may have the block that stands at `position`. False sets the refusal.
    [[nodiscard]] bool mayHave(std::int64_t position, const TagLib::ByteVector &block);

    /// Why TagLib gets nothing more, as the end of a sentence; nothing while it may read.
    [[nodiscard]] const std::optional<QString> &refusal() const { return m_refusal; }
    /// The frame of an ID3v2 tag at which TagLib has ended its reading (firstUnreadId3v2Frame); nothing when there is none.
    [[nodiscard]] const std::optional<QString> &unreadFrame() const { return m_unreadFrame; }

private:
    [[nodiscard]] std::optional<QString> faultOf(std::int64_t position, const TagLib::ByteVector &block) const;
    /// Whether it is what stands behind the head of an ID3v2 tag.
    [[nodiscard]] bool isId3v2(std::int64_t position, const TagLib::ByteVector &block) const;

    std::int64_t m_bytes = 0;
    int m_blocks = 0;
    TagLib::ByteVector m_last; ///< when it can be the head of something
    std::int64_t m_lastEnd = -1;
    std::optional<QString> m_refusal;
    std::optional<QString> m_unreadFrame;
};

} // namespace nurv
