// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

/// Reads the comment of an Ogg file of Opus (RFC 7845) or Vorbis whose first page (RFC 3533) stands at that place.
/// Throws NurvFailure when it is damaged, or the file has no such comment.
void readOggMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found);

} // namespace nurv
