// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"
#include "ape/ApeMd5.h"
#include "support/SpoolFile.h"

#include <optional>
#include <span>
#include <vector>

namespace nurv {

class OutputFile;

/// Puts a file together from its parts, in the order ApeFileReader tells. What stands at
/// its start is known at its end only:
///
///  - Where the number of frames is known and the output can be written again, room is
///    left for it.
///  - Otherwise the frames wait in a spool file.
class ApeFileWriter {
public:
    /// `header` has everything but the numbers of frames and blocks, which the frames
    /// give. `storedHeader` must outlive the writer. Throws ToolError(Write), or ClosedPipe.
    ApeFileWriter(OutputFile &output, const ApeHeader &header, std::span<const uint8_t> storedHeader,
                  std::optional<uint32_t> expectedFrames);
    ApeFileWriter(const ApeFileWriter &) = delete;
    ApeFileWriter &operator=(const ApeFileWriter &) = delete;

    /// Throws ApeError(Read) when more frames come than were expected.
    void addFrame(std::span<const uint8_t> frame, uint32_t blocks);

    /// After the frames. Throws ApeError(InputTooLarge) beyond 4 GiB.
    void addStoredTrailing(std::span<const uint8_t> bytes);

    /// The decoder shall make a WAV header of its own. Only where the number of frames was
    /// not expected, and with nothing stored behind them.
    void forgetStoredHeader();

    /// Writes the rest. The output is not committed.
    void finish();

private:
    void addBody(std::span<const uint8_t> bytes);
    void addStream(std::span<const uint8_t> bytes);
    void padStream();
    [[nodiscard]] std::vector<uint8_t> head(const std::array<uint8_t, 16> &md5) const;
    [[nodiscard]] std::vector<uint8_t> seekTable() const;

    OutputFile &m_output;
    ApeHeader m_header;
    std::span<const uint8_t> m_storedHeader;
    size_t m_seekEntries = 0; ///< room that is left for them
    std::optional<SpoolFile> m_waiting;
    std::vector<uint64_t> m_frameStarts; ///< in the stream of frames
    uint64_t m_streamBytes = 0;
    std::vector<uint8_t> m_words; ///< of the stream; what does not fill a word stays
    uint64_t m_trailingBytes = 0;
    bool m_isStreamPadded = false;
    ApeMd5 m_md5;
};

} // namespace nurv
