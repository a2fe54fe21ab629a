// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

/// Reads the tags that stand behind one another at the end of a file, whatever its kind: ID3v1,
/// Lyrics3, APE (versions 1 and 2), ID3v2 with a footer. None of them starts before `begin`.
/// Returns where the first of them starts; the size of the file without any. Throws
/// NurvFailure when one is damaged.
[[nodiscard]] std::int64_t readTrailingTags(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found);

} // namespace nurv
