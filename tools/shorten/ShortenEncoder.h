// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenBitWriter.h"
#include "shorten/ShortenFormat.h"
#include "shorten/ShortenMeans.h"
#include "shorten/ShortenPredictor.h"
#include "support/ByteSink.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace nurv::shorten {

class ShortenSeekTable;

/// Writes a Shorten stream of version 2: the bytes before the samples, the samples, the
/// bytes after them. Memory is independent of the stream's length.
class ShortenEncoder {
public:
    /// The file type is Unsigned8 or Signed16LittleEndian, the version 2, the maximal
    /// predictor order 0. The table, where there is one, learns the points to seek to.
    ShortenEncoder(const StreamHeader &header, ByteSink sink, ShortenSeekTable *seekTable = nullptr);
    ShortenEncoder(const ShortenEncoder &) = delete;
    ShortenEncoder &operator=(const ShortenEncoder &) = delete;

    /// Bytes that the decoder copies.
    void writeVerbatim(std::span<const uint8_t> bytes);

    /// One block of interleaved samples, as they lie in the file. Only the last block may
    /// have fewer frames than the header says, and none has more.
    void writeBlock(std::span<const uint8_t> frames);

    /// Ends the stream. Returns its length in bytes. The last call.
    uint64_t finish();

private:
    struct Channel {
        explicit Channel(const StreamHeader &header);

        ShortenMeans means;
        std::vector<int32_t> samples; ///< the history, then the block
    };

    void handOver(std::span<const uint8_t> words);
    void writeStreamHeader();
    void writeFunction(Function function);
    void loadBlock(std::span<const uint8_t> frames);
    void writeShift();
    void addSeekPointIfWanted();
    void writeChannel(Channel &channel);
    [[nodiscard]] std::span<int32_t> block(Channel &channel) const;

    StreamHeader m_header;
    ByteSink m_sink;
    ShortenSeekTable *m_seekTable;
    ShortenBitWriter m_writer;
    ShortenPredictor m_predictor;
    std::vector<Channel> m_channels;
    uint32_t m_blockSize;
    unsigned m_shift = 0;
    uint64_t m_frames = 0; ///< in the blocks written
};

} // namespace nurv::shorten
