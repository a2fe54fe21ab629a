// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"
#include "ape/ApeRangeCoder.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace nurv {

/// Which instructions the prediction filters are computed with. All give the same bytes.
enum class ApeInstructionSet { Plain, Sse2, Avx2 };

[[nodiscard]] bool isAvailable(ApeInstructionSet set);
[[nodiscard]] ApeInstructionSet bestInstructionSet();

/// How wide a predictor's sums are. The format wraps them at 32 bits. For some years 64
/// bits were in use at 24 bits per sample, under the same version number.
enum class ApeSums { Wrapping, Wide };

/// Turns the samples of a frame into coded bytes and back: prediction, adaptive filters
/// and range coding of what they leave. A frame is coded piece by piece, from `start` on.
///
///     samples -> (stereo: side, mid) -> first-order filter and linear predictor
///             -> filters of the level, long to short -> residual -> range coder
class ApeFrameCoder {
public:
    virtual ~ApeFrameCoder();

    /// Begins a new frame: everything adaptive is as at the start of a file.
    virtual void start() = 0;

    /// `samples`: interleaved, blocks x 2, or blocks x 1. The encoder needs room for
    /// `kApeMaxBytesPerSample` bytes a sample.
    virtual void encodeStereo(ApeRangeEncoder &coder, const int32_t *samples, size_t blocks) = 0;
    virtual void encodeMono(ApeRangeEncoder &coder, const int32_t *samples, size_t blocks) = 0;

    /// The counterparts. They read up to `kApeMaxBytesPerSample` bytes a sample, and
    /// leave arbitrary samples where the decoder finds the bytes corrupt.
    virtual void decodeStereo(ApeRangeDecoder &coder, int32_t *samples, size_t blocks, ApeSums sums) = 0;
    virtual void decodeMono(ApeRangeDecoder &coder, int32_t *samples, size_t blocks, ApeSums sums) = 0;
};

/// `set` must be available.
[[nodiscard]] std::unique_ptr<ApeFrameCoder> makeApeFrameCoder(ApeLevel level,
                                                               ApeInstructionSet set = bestInstructionSet());

} // namespace nurv
