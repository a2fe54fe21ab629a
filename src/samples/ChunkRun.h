// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

class ByteSource;

/// What stands behind the samples of a WAV or AIFF file.
enum class BehindSound {
    Chunks,        ///< well-formed chunks to the end of the file, or nothing, or a little padding
    FurtherSound,  ///< chunks, of which one holds samples again
    SomethingElse, ///< what no chunks are: more samples, as far as anybody can tell
};

/// Follows the chunks from the offset to the end of the file. `padded`: whether a byte may
/// stand in front of the first one, as behind a chunk of an odd size; some writers leave
/// it out.
[[nodiscard]] BehindSound lookBehindSound(const ByteSource &source, std::int64_t from, bool padded, bool isBigEndian);

} // namespace nurv
