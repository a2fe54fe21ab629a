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
    explicit TtaFrameDecoder(const TtaHeader &header, TtaCpu cpu = bestTtaCpu());

    /// Fills `pcm` (interleaved little-endian samples as in a WAV file, whole sample
    /// frames) from the source's next frame. Returns false when the frame ends before.
    [[nodiscard]] bool decode(TtaBitReader &reader, std::span<uint8_t> pcm) const;

private:
    using Loop = bool (*)(TtaBitReader &reader, std::span<uint8_t> pcm, unsigned channels);

    unsigned m_channels;
    Loop m_loop;
};

} // namespace nurv
