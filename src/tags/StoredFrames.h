// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/StoredTags.h"

namespace TagLib::ID3v2 {
class Tag;
}

namespace nurv::storedFrames {

// The frames of ID3v2 tags as stored tags: those of one text each stand as that text, the others as they are rendered
// for version 4.

[[nodiscard]] StoredTags of(const TagLib::ID3v2::Tag &tag);

/// Puts the frames among `tags` in the place of all that the tag has. Throws NurvFailure for what is no frame.
void replace(TagLib::ID3v2::Tag &tag, const StoredTags &tags);

} // namespace nurv::storedFrames
