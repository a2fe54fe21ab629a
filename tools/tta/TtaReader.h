// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tta/TtaBitReader.h"
#include "tta/TtaFrameDecoder.h"
#include "tta/TtaHeader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nurv {

class InputFile;

/// What was found of one frame.
enum class TtaFrameState {
    Good,
    Truncated,   ///< the file ends before the frame
    CrcMismatch, ///< its bytes are not those that were written
    Overrun,     ///< its CRC matches, but it holds fewer samples than it should
    HoldsMore,   ///< its CRC matches, but it holds more samples than the header counts
};

/// Reads a TTA1 file from its start to its end, frame by frame; tags before and after the
/// sound are passed over.
class TtaReader {
public:
    /// Reads the header and the seek table. Throws ToolError: Damaged when one of their
    /// CRCs does not match or the file ends within them, otherwise as TtaHeader::fromBytes.
    /// `Crc::Ignored` is for fuzzing, which would come no further.
    explicit TtaReader(InputFile &input, TtaHeader::Crc crc = TtaHeader::Crc::Checked);

    [[nodiscard]] const TtaHeader &header() const { return m_header; }

    /// Reads the next of `frameCount()` frames. The interleaved samples are good until
    /// the next call, and rubbish unless the state is Good. Throws ToolError(Read).
    [[nodiscard]] TtaFrameState readFrame();
    [[nodiscard]] std::span<const uint8_t> pcm() const { return m_pcm; }

    /// "frame 3 of 12 (at 2.09 s) is damaged: its CRC does not match", for the frame that
    /// was read last.
    [[nodiscard]] std::string describe(TtaFrameState state) const;

private:
    void readSeekTable();
    size_t readFrameBytes(std::span<uint8_t> bytes);
    [[nodiscard]] bool frameCrcMatches();

    InputFile &m_input;
    TtaHeader::Crc m_crc;
    TtaHeader m_header;
    std::vector<uint32_t> m_frameSizes; ///< bytes, the CRC included
    uint64_t m_framesRead = 0;
    uint64_t m_frameBytesLeft = 0; ///< without the CRC
    uint32_t m_frameCrc = 0;
    bool m_isTruncated = false;
    TtaBitReader m_bitReader;
    TtaFrameDecoder m_decoder;
    std::vector<uint8_t> m_pcm;
};

/// Whether the input, just opened, begins as a TTA1 file. Takes the tags in front of it,
/// but nothing of any other file.
[[nodiscard]] bool looksLikeTta(InputFile &input);

} // namespace nurv
