// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/SpoolFile.h"
#include "tta/TtaBitWriter.h"
#include "tta/TtaFrameEncoder.h"
#include "tta/TtaHeader.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nurv {

class OutputFile;

/// Writes a TTA1 file. Header and seek table stand in front of the frames but are
/// known after them, so that the frames go
///
///     behind a gap that is filled in the end    number of samples known, output seekable
///     to a nameless temporary file, and to the output in the end              otherwise
///
/// Memory does not depend on the length but for the seek table, at most 16 MiB.
class TtaWriter {
public:
    /// `format` tells all but the number of samples, which `sampleCount` does if it is
    /// known. Throws ToolError, also when the format cannot be held.
    TtaWriter(OutputFile &output, const TtaHeader &format, std::optional<uint64_t> sampleCount);

    /// The size of each but the last piece that `writeFrame` takes.
    [[nodiscard]] size_t frameBytes() const { return size_t{m_header.frameLength()} * m_header.blockAlign(); }

    /// Interleaved little-endian samples. Throws ToolError(UnsupportedFormat) when the
    /// sound is too long, ToolError(Write) or ClosedPipe.
    void writeFrame(std::span<const uint8_t> pcm);

    /// Completes the file. Throws ToolError(Read) when fewer or more samples came than
    /// were said to, and as `writeFrame`.
    void finish();

private:
    void writeFrameBytes(std::span<const uint8_t> bytes);
    [[nodiscard]] std::vector<uint8_t> head() const;

    OutputFile &m_output;
    TtaHeader m_header;
    std::optional<uint64_t> m_promisedSamples;
    std::optional<SpoolFile> m_spool;
    uint64_t m_sampleCount = 0;
    std::vector<uint32_t> m_frameSizes; ///< bytes, the CRC included
    uint64_t m_frameSize = 0;
    uint32_t m_frameCrc = 0;
    TtaBitWriter m_bitWriter;
    TtaFrameEncoder m_encoder;
};

} // namespace nurv
