// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SoundComparison.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace nurv {

/// What can be shown of a lossy file: that all of it decodes, and is as long as the sound that it was made of.
///
/// Blocks the calling thread; made for workers.
class LossyComparison {
public:
    /// The most frames of an encoder by which the lengths may differ: what stands before and behind the sound to
    /// fill them up is known to the frame, and not by every decoder.
    static constexpr std::int64_t kMostFramesApart = 1;

    /// Decodes both to their ends and compares the durations and the numbers of channels. A lossy source is
    /// a difference: nothing made of it stands for it.
    [[nodiscard]] static SoundComparison::Result compare(const QString &source, const QString &output,
                                                         const SoundComparison::Progress &progress,
                                                         const SoundComparison::IsUnwanted &isUnwanted);
};

/// A lossy file that was decoded to its end.
struct LossySound {
    /// Without what the format says is no sound before it; behind it an MPEG-4 file may have the rest of a frame.
    std::int64_t frames = 0;
    int sampleRateHz = 0;
    int channels = 0;
    int encoderFrame = 0; ///< frames that are encoded together

    /// Throws NurvFailure, whose reason is one line without the path, where the decoder complains. Nothing when it was
    /// given up.
    [[nodiscard]] static std::optional<LossySound> decode(const QString &path,
                                                          const SoundComparison::Progress &progress,
                                                          const SoundComparison::IsUnwanted &isUnwanted);
};

} // namespace nurv
