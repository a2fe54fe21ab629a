// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"
#include "ape/ApeFrameCoder.h"
#include "support/WaveReader.h"

#include <functional>

namespace nurv {

class ApeFileWriter;
class InputFile;
class OutputFile;

/// Turns a WAV file into a Monkey's Audio file of version 3990, in one pass. Memory is
/// that of a frame, whatever the length.
class ApeEncoder {
public:
    /// Reads the WAV header. Throws ApeError with the number that says what is wrong.
    ApeEncoder(InputFile &input, ApeLevel level, ApeInstructionSet set = bestInstructionSet());

    /// Blocks that the header announces, or that the input has room for; 0 when nobody knows.
    [[nodiscard]] uint64_t expectedBlocks() const;

    /// Writes the whole file; committing it is left to the caller. What stands
    /// around the samples is stored, so that decoding gives the same bytes, except where the
    /// header of a stream does not know its length: then the decoder shall make one. Throws
    /// ToolError(Read) where the input changed since it was opened, and as OutputFile.
    void encode(OutputFile &output, const std::function<void(size_t)> &onBlocks = {});

private:
    void checkFormat() const;
    [[nodiscard]] uint64_t encodeFrames(ApeFileWriter &writer, const std::function<void(size_t)> &onBlocks);
    void storeTrailing(ApeFileWriter &writer);

    InputFile &m_input;
    WaveReader m_wave;
    ApeLevel m_level;
    ApeInstructionSet m_set;
    /// The length that the header announces may be a guess.
    bool m_isLengthUncertain;
};

} // namespace nurv
