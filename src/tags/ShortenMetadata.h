// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

/// Reads what a Shorten file that starts at `begin` keeps of the WAV or AIFF file that it was made of:
/// all but its sound. The codes of the sound are passed over only where that file says that it goes on behind the
/// sound; that takes about as long as decoding. Throws NurvFailure when the file is damaged.
void readShortenMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found);

} // namespace nurv
