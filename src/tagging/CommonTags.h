// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tagging/TagFields.h"
#include "tags/TagsObject.h"

#include <array>
#include <optional>

namespace nurv {

/// What the records of several files have in common. They are added one after the other, so that no more than two of
/// them are kept at a time.
///
/// Each file after the first is compared with the first, and each comparison sets every field anew: what comes out is
/// what the first file and the last one share. `differs` tells of all of them.
class CommonTags {
public:
    void add(const TagsObject &record);

    /// Nothing for fewer than two records, and when no field was ever equal. Without title and track, which are never
    /// compared for it.
    [[nodiscard]] const std::optional<TagsObject> &common() const { return m_common; }
    /// Whether any two of the records differ in that field of `tagFields`.
    [[nodiscard]] bool differs(std::size_t field) const { return m_differs.at(field); }
    [[nodiscard]] bool picturesDiffer() const { return m_picturesDiffer; }
    [[nodiscard]] bool customTagsDiffer() const { return m_customTagsDiffer; }

private:
    void compare(const TagsObject &record);

    std::optional<TagsObject> m_reference;
    std::optional<TagsObject> m_common;
    std::array<bool, std::tuple_size_v<std::remove_cvref_t<decltype(tagFields())>>> m_differs{};
    bool m_picturesDiffer = false;
    bool m_customTagsDiffer = false;
};

/// Whether there is none of both, or the same pixels in both.
[[nodiscard]] bool isSamePicture(const AlbumArt &one, const AlbumArt &other);

} // namespace nurv
