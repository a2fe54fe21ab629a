// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

/// How many bytes the ID3v2 tag has that starts at that place, its padding and footer
/// included; 0 when none starts there.
[[nodiscard]] std::int64_t id3v2SizeAt(const MetadataBytes &bytes, std::int64_t offset);

/// Reads the frames of an ID3v2 tag (2.2 to 2.4) that starts at that place. A frame that is
/// compressed or encrypted, and one of a kind that holds no text, is taken as its bytes. Throws
/// NurvFailure when the tag is damaged.
void readId3v2(const MetadataBytes &bytes, std::int64_t offset, MetadataCollector &found);

} // namespace nurv
