// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace nurv {

/// The sample format and length of one audio file.
struct AudioFormatObject {
    int sampleRate = 0;            ///< Hz
    int bitsPerChannel = 0;        ///< bits per sample of one channel
    int channels = 0;
    std::int64_t totalSamples = 0; ///< frames

    /// The length in seconds; 0 when the sample rate is unknown.
    [[nodiscard]] double time() const
    {
        return sampleRate > 0 ? static_cast<double>(totalSamples) / sampleRate : 0.0;
    }
};

} // namespace nurv
