// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioFileStatus.h"

#include <QString>

#include <cstdint>
#include <memory>

struct stat;

namespace nurv {

/// Reads the samples of an audio file: WAV, AIFF, Apple Lossless, AAC, FLAC and what
/// else the file's contents turn out to be.
///
///     open ──> fileDataFormat, lengthFrames ──> setClientFormat ──> read, read, ... ──> 0 frames
///
/// Used by one thread at a time; every operation blocks for the file. Needs a fixed
/// amount of memory, and about 30 bytes per packet for files that index their packets.
class AudioFileReader {
public:
    /// Whether samples may be rounded on their way into integers.
    enum class Precision { Exact, Rounded };

    AudioFileReader();
    ~AudioFileReader();
    AudioFileReader(const AudioFileReader &) = delete;
    AudioFileReader &operator=(const AudioFileReader &) = delete;

    /// Opens a regular file and reads its header.
    [[nodiscard]] AudioFileStatus open(const QString &path);

    /// The samples as the file keeps them; see AudioFileHeader::format.
    [[nodiscard]] AudioFileStatus fileDataFormat(AudioStreamDescription &format) const;
    /// The length in frames, without the encoder's priming and padding; 0 when the
    /// file does not tell.
    [[nodiscard]] AudioFileStatus lengthFrames(std::int64_t &frames) const;
    /// Whether the length is the file's word. Then no more frames are read, and a
    /// file that ends before it is damaged.
    [[nodiscard]] bool isLengthExact() const;

    /// Whether the file holds sound that is not read: see AudioFileHeader. Once all was read,
    /// also whether a lossless file goes on behind the length that its header tells.
    [[nodiscard]] bool holdsMoreSound() const;

    /// Says how `read` delivers samples: big-endian signed packed integers of 8, 16,
    /// 24 or 32 bits with the file's own sample rate and channels. Any other form is
    /// refused; with Precision::Exact also integers that are narrower than the samples of
    /// a lossless file, and floating-point samples.
    [[nodiscard]] AudioFileStatus setClientFormat(const AudioStreamDescription &format, Precision precision);

    /// Reads `frames` frames into `buffer` and leaves in `frames` how many came: fewer
    /// only at the end, then 0. Damage, also a file that ends too early, is a failure.
    [[nodiscard]] AudioFileStatus read(std::uint8_t *buffer, std::uint32_t &frames);

    /// Whether these are the facts of the open file.
    [[nodiscard]] bool isSameFile(const struct stat &facts) const;

private:
    class Source;
    std::unique_ptr<Source> m_source;
};

} // namespace nurv
