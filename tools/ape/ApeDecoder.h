// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFileReader.h"
#include "ape/ApeFrameCoder.h"
#include "ape/ApeSource.h"

namespace nurv {

/// Turns a Monkey's Audio file of version 3990 back into the WAV file that it was made of,
/// byte for byte, in one pass. Memory is that of a frame, whatever the length.
class ApeDecoder final : public ApeSource {
public:
    /// Reads the header. Throws as ApeFileReader.
    explicit ApeDecoder(InputFile &input, ApeInstructionSet set = bestInstructionSet());

    [[nodiscard]] uint64_t totalBlocks() const override { return m_reader.header().totalBlocks(); }

    /// Frame by frame. Fails also where only the MD5 of the whole file is wrong.
    void decode(const ByteSink &sink, const std::function<void(size_t)> &onBlocks = {}) override;

private:
    [[nodiscard]] const ApeHeader &header() const { return m_reader.header(); }
    void decodeFrames(const ByteSink &sink, const std::function<void(size_t)> &onBlocks);

    ApeFileReader m_reader;
    ApeInstructionSet m_set;
};

} // namespace nurv
