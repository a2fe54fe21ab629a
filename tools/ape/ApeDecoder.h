// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFileReader.h"
#include "ape/ApeFrameCoder.h"

namespace nurv {

/// Turns a Monkey's Audio file of version 3990 back into the WAV file that it was made of,
/// byte for byte, in one pass. Memory is that of a frame, whatever the length.
class ApeDecoder {
public:
    /// Reads the header. Throws as ApeFileReader.
    explicit ApeDecoder(InputFile &input, ApeInstructionSet set = bestInstructionSet());

    [[nodiscard]] const ApeHeader &header() const { return m_reader.header(); }

    /// Hands the WAV file to `sink`, first what stands before the samples, then frame by
    /// frame; the samples of a frame only once their checksum is right. Throws ApeError at
    /// the first fault, also where only the MD5 of the whole file is wrong. `onBlocks` is
    /// told now and then how many blocks were decoded since.
    void decode(const ApeFileReader::Sink &sink, const std::function<void(size_t)> &onBlocks = {});

private:
    [[nodiscard]] bool hasStoredHeader() const;
    void decodeFrames(const ApeFileReader::Sink &sink, const std::function<void(size_t)> &onBlocks);

    ApeFileReader m_reader;
    ApeInstructionSet m_set;
};

} // namespace nurv
