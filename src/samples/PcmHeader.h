// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/PcmSamples.h"
#include "samples/SampleStream.h"

#include <cstdint>
#include <optional>

namespace nurv {

class ByteSource;

/// Where the samples of a WAV (RIFF, RF64, BW64) or AIFF (AIFF-C) file are, after its
/// header and after what is there.
///
/// A header is believed as far as the file bears it out: what follows the declared end has
/// to be chunks, to the end of the file. Otherwise the sound goes on to that end.
struct PcmHeader {
    SampleFormat format;
    PcmCoding coding;
    std::int64_t soundStart = 0; ///< offset of the first sample
    std::int64_t heldBytes = 0;  ///< from there to the real end
    /// Frames; 0 where the header says 0; nothing where it has a number that stands for
    /// "not known", as a pipe's writer leaves it.
    std::optional<std::int64_t> declaredFrames;
    bool holdsFurtherSound = false; ///< a second chunk of samples follows

    [[nodiscard]] std::int64_t frameBytes() const { return std::int64_t{format.channels} * coding.bytesPerSample; }
    [[nodiscard]] std::int64_t heldFrames() const { return heldBytes / frameBytes(); }

    /// Whether the file begins like one of these.
    [[nodiscard]] static bool isAt(const ByteSource &source, std::int64_t start);

    /// Throws NurvFailure for a damaged header and for samples that are no integers of up to
    /// 32 bits and no floats of 32.
    [[nodiscard]] static PcmHeader read(const ByteSource &source, std::int64_t start);
};

} // namespace nurv
