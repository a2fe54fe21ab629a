// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace nurv {

/// How long a sound is after what its file tells without being decoded.
struct SoundLength {
    /// After its headers; nothing when they do not tell, as in a stream that came from a
    /// pipe.
    std::optional<std::int64_t> declaredFrames;
    /// After what else tells. WAV and AIFF: the size; to the end of the file when a crashed
    /// recorder left a size of 0 or of 0xFFFFFFFF, or when the sound goes on behind what the
    /// header counts. FLAC: the last frame's own number. MPEG-4: what is there of a file that ends early, else the table
    /// of durations, where it and the header do not agree.
    std::optional<std::int64_t> heldFrames;
    /// Of a lossy file whose header does not tell to the sample: what its frames or pages come to, the encoder's
    /// fillings included.
    std::optional<std::int64_t> roughFrames = {};
    /// Whether what decodes the file would notice that it holds another number of frames
    /// than its header says: by its size, or by checksums over all of it.
    bool isBacked = true;
    int sampleRateHz = 0; ///< 0 when it is not known
    int channels = 0;
    int bitsPerSample = 0;
};

/// Reads the header of a regular file: a few reads, no decoding. Nothing for a file that
/// is no sound file of a kind that is known.
[[nodiscard]] std::optional<SoundLength> soundLength(const QString &path);

} // namespace nurv
