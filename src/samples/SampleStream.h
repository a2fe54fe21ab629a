// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace nurv {

/// How the samples of a sound are kept.
struct SampleFormat {
    int sampleRateHz = 0;
    int channels = 0;
    int bitsPerSample = 0; ///< the width in which the file keeps a sample
    bool isFloat = false;

    bool operator==(const SampleFormat &) const = default;
};

/// The sound of a file, decoded from its first frame to its real end, whatever its
/// headers say of its length: what a pipe, a crashed recorder or a stranger wrote into
/// them is told beside it, and believed nowhere.
///
///     open ──> format, declaredFrames, isLossless ──> read, read, ... ──> 0 frames
///
/// Used by one thread at a time; every operation blocks for the file. Memory does not
/// grow with the file.
class SampleStream {
public:
    virtual ~SampleStream() = default;
    SampleStream(const SampleStream &) = delete;
    SampleStream &operator=(const SampleStream &) = delete;

    /// Opens a regular file by what it holds, not by its name. Throws NurvFailure, whose
    /// reason is one line without the path.
    [[nodiscard]] static std::unique_ptr<SampleStream> open(const QString &path);

    [[nodiscard]] virtual SampleFormat format() const = 0;
    /// The length after the file's own headers, in frames; nothing when they do not tell.
    [[nodiscard]] virtual std::optional<std::int64_t> declaredFrames() const = 0;
    /// Whether decoding gives back every bit that was encoded.
    [[nodiscard]] virtual bool isLossless() const = 0;

    /// Fills `samples` (interleaved, frames × channels) with up to `frames` frames and
    /// returns how many came; 0 at the real end. Integers stand in the high bits of the 32,
    /// so that files of different widths compare; floats as their bit patterns. Throws
    /// NurvFailure when the decoder complains, when the stream breaks off, and at its end
    /// when a checksum that the file carries does not fit.
    [[nodiscard]] virtual std::size_t read(std::int32_t *samples, std::size_t frames) = 0;

    /// How much of the file has been read, from 0 to 1; a measure for progress alone.
    [[nodiscard]] virtual double progress() const = 0;

protected:
    SampleStream() = default;
};

} // namespace nurv
