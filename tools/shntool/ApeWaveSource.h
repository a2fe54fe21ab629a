// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFileReader.h"
#include "ape/ApeFrameDecoder.h"
#include "shntool/WaveSource.h"
#include "support/InputFile.h"

namespace nurv {

/// The WAV file that a Monkey's Audio file of version 3990 was made of, byte for byte.
class ApeWaveSource final : public PieceSource {
public:
    /// Reads the header. Throws ApeError, ApeOlderVersion among them.
    explicit ApeWaveSource(const std::string &name);

protected:
    bool makePiece() override;

private:
    void makeHeader();
    void makeEnd();

    InputFile m_input;
    ApeFileReader m_reader;
    ApeFrameDecoder m_decoder;
    uint32_t m_framesGiven = 0;
    enum class Part { Header, Frames, Nothing } m_next = Part::Header;
};

} // namespace nurv
