// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tta/TtaBitReader.h"
#include "tta/TtaCpu.h"
#include "tta/TtaHeader.h"

#include <cstdint>
#include <span>

namespace nurv {

/// Turns the bits of one frame into samples.
class TtaFrameDecoder {
public:
    /// Where the frame ends.
    enum class Ending {
        WithSamples,   ///< with the last sample that was asked for, but for some padding
        BeforeSamples, ///< it holds fewer
        BehindSamples, ///< it holds more
    };

    explicit TtaFrameDecoder(const TtaHeader &header, TtaCpu cpu = bestTtaCpu());

    /// Fills `pcm` (interleaved little-endian samples as in a WAV file, whole sample
    /// frames) from the source's next frame.
    [[nodiscard]] Ending decode(TtaBitReader &reader, std::span<uint8_t> pcm) const;

private:
    using Loop = Ending (*)(TtaBitReader &reader, std::span<uint8_t> pcm, unsigned channels);

    unsigned m_channels;
    Loop m_loop;
};

} // namespace nurv
