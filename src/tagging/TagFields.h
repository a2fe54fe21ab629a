// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/TagsObject.h"

#include <QString>

#include <array>

namespace nurv {

/// A text of a record that the Tags tab shows.
struct TagField {
    QStringView name;    ///< "album", "track-total": of its option and in JSON
    const char *caption; ///< "Album"
    const TagsObject::Text &(TagsObject::*text)() const;
    void (TagsObject::*setText)(TagsObject::Text);
    bool isInApeTags; ///< also written into Monkey's Audio and WavPack files
};

/// In the order in which people read them.
[[nodiscard]] const std::array<TagField, 11> &tagFields();

} // namespace nurv
