// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/MetadataBytes.h"
#include "tags/MetadataCollector.h"

#include <cstdint>

namespace nurv {

/// Reads the metadata blocks of a FLAC stream (RFC 9639) that starts at that place. What the flac
/// program keeps of a WAV or AIFF file in APPLICATION blocks counts as the chunks that it
/// was. Returns where the sound starts. Throws NurvFailure when a block is damaged.
[[nodiscard]] std::int64_t readFlacMetadata(const MetadataBytes &bytes, std::int64_t begin, MetadataCollector &found);

/// Reads a Vorbis comment, without what marks it in a stream. Throws NurvFailure when it is damaged.
void readVorbisComment(const QByteArray &comment, MetadataCollector &found);

} // namespace nurv
