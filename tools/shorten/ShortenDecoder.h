// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenBitReader.h"
#include "shorten/ShortenFormat.h"
#include "shorten/ShortenMeans.h"
#include "support/ByteSink.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nurv {
class InputFile;
}

namespace nurv::shorten {

/// Restores the file that a Shorten stream (versions 0 to 3) was made of, byte for
/// byte and without interpreting it: WAV, AIFF, or what else the encoder copied.
///
///     bit stream -> VERBATIM -----------------------------------------> bytes
///                -> residuals -> samples + history -> shifted, clipped -> bytes
///
/// ID3v2 tags in front are passed over, and nothing after the stream's end is read as
/// part of it. Memory is independent of the stream's length. Every operation throws
/// ToolError(InvalidInput) where this is no Shorten file, ToolError(UnsupportedFormat)
/// or ToolError(Damaged); all that was decoded until then has gone to the sink.
class ShortenDecoder {
public:
    ShortenDecoder(InputFile &input, ByteSink sink);

    /// Decodes what stands before the first sample: the whole header of a WAV file.
    void decodeHead();

    /// After `decodeHead`: decodes the rest.
    void decodeRest();

    /// After `decodeHead`, for whoever wants the rest in pieces: carries out the next
    /// command and tells which it was, at the end and from then on Function::Quit.
    Function decodeNext();
    /// What `decodeNext` is going to carry out.
    [[nodiscard]] Function next() const { return m_function; }

    /// Valid after `decodeHead`.
    [[nodiscard]] const StreamHeader &header() const { return m_header; }

    /// Bytes of the input that belong to what was decoded. Behind the last function its stream is filled up with zeros to
    /// a word.
    [[nodiscard]] uint64_t position() const { return m_reader.position(); }

private:
    struct Channel {
        explicit Channel(const StreamHeader &header);

        ShortenMeans means;
        std::vector<int32_t> samples; ///< the history, then the block
    };

    void readStreamHeader();
    void checkHeader() const;
    [[nodiscard]] uint32_t readHeaderField(unsigned lowBits);
    [[nodiscard]] Function readFunction();
    void copyVerbatim();
    void changeBlockSize();
    void changeShift();
    void decodeBlock(Function function);
    void predictDiff(Function function, Channel &channel);
    void predictLinear(Channel &channel);
    void readResiduals(Channel &channel, uint32_t energy);
    [[nodiscard]] uint32_t readEnergy();
    void finishBlock(Channel &channel);
    [[nodiscard]] size_t history() const;
    [[nodiscard]] std::span<int32_t> block(Channel &channel) const;
    [[noreturn]] void fail(const std::string &why) const;

    InputFile &m_input;
    ByteSink m_sink;
    ShortenBitReader m_reader;
    StreamHeader m_header;
    Function m_function = Function::Quit; ///< the next one
    uint32_t m_blockSize = 0;
    unsigned m_shift = 0;
    std::vector<Channel> m_channels;
    size_t m_channel = 0; ///< whose block comes next
    std::vector<int32_t> m_coefficients;
    std::vector<uint8_t> m_bytes; ///< the block of all channels as it goes to the sink
};

} // namespace nurv::shorten
