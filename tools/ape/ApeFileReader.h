// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeError.h"
#include "ape/ApeFormat.h"
#include "ape/ApeMd5.h"
#include "support/ByteSink.h"

#include <span>
#include <vector>

namespace nurv {

class InputFile;

/// A file of a version before 3990, which other code reads.
class ApeOlderVersion : public ApeError {
public:
    explicit ApeOlderVersion(uint16_t version);
};

/// Takes a file apart, from its start to its end, and hashes what is hashed:
///
///     (ID3v2) | descriptor, header, seek table | stored WAV header | frames | stored
///     trailing bytes | (tags)
///
/// The frames are one stream whose bytes are reversed in each group of four; a frame may
/// begin at any byte of it. The parts are read in this order, each once.
class ApeFileReader {
public:
    /// Reads up to the seek table, and checks that everything is in its limits. Throws
    /// ApeOlderVersion, or ApeError with the number that says what is wrong.
    explicit ApeFileReader(InputFile &input);

    [[nodiscard]] const ApeHeader &header() const { return m_header; }

    /// Whether the file has a WAV header of its own. Otherwise the decoder makes one.
    [[nodiscard]] bool hasStoredHeader() const { return m_descriptor.storedHeaderBytes > 0; }

    void readStoredHeader(const ByteSink &sink);

    /// The next of `header().totalFrames` frames, the right way round, with
    /// ApeFrameDecoder::kPaddingBytes bytes behind it. Good until the next call.
    std::span<const uint8_t> readFrame();

    void readStoredTrailing(const ByteSink &sink);

    [[nodiscard]] const std::string &inputName() const;

    /// After all parts. Throws ApeError(InvalidChecksum).
    void checkMd5();

private:
    void readDescriptor();
    void readHeader();
    void readSeekTable();
    void checkParts() const;
    void copyHashed(uint64_t count, const ByteSink &sink);
    void readWords(uint64_t count);
    [[noreturn]] void refuse(ApeErrorNumber number, const std::string &why) const;

    InputFile &m_input;
    uint64_t m_start = 0; ///< of the descriptor in the input
    ApeDescriptor m_descriptor;
    std::vector<uint8_t> m_headerBytes;
    ApeHeader m_header;
    std::vector<uint8_t> m_seekTable;
    /// Where each frame begins in the stream of frames, and where the last one ends.
    std::vector<uint64_t> m_frameStarts;
    uint32_t m_nextFrame = 0;
    uint64_t m_wordsRead = 0; ///< bytes of the stream of frames
    std::vector<uint8_t> m_buffer;
    std::vector<uint8_t> m_carried; ///< bytes of the last word that belong to the next frame
    ApeMd5 m_md5;
};

} // namespace nurv
