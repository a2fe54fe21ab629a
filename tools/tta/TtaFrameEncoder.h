// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tta/TtaBitWriter.h"
#include "tta/TtaCpu.h"
#include "tta/TtaHeader.h"

#include <cstdint>
#include <span>

namespace nurv {

/// Turns the samples of one frame into bits. There is one way to do so: every encoder
/// gives the same bytes.
class TtaFrameEncoder {
public:
    explicit TtaFrameEncoder(const TtaHeader &header, TtaCpu cpu = bestTtaCpu());

    /// Writes one frame of these samples (interleaved and little-endian as in a WAV file,
    /// whole sample frames). Throws what the writer's sink throws.
    void encode(TtaBitWriter &writer, std::span<const uint8_t> pcm) const;

private:
    using Loop = void (*)(TtaBitWriter &writer, std::span<const uint8_t> pcm, unsigned channels);

    unsigned m_channels;
    Loop m_loop;
};

} // namespace nurv
