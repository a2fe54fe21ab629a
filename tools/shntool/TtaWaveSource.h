// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveSource.h"
#include "support/InputFile.h"
#include "tta/TtaReader.h"

namespace nurv {

/// The sound of a TTA file as a WAV file with a canonical header.
class TtaWaveSource final : public PieceSource {
public:
    /// Reads the header. Throws ToolError.
    explicit TtaWaveSource(const std::string &name);

protected:
    bool makePiece() override;

private:
    InputFile m_input;
    TtaReader m_reader;
    uint64_t m_framesGiven = 0;
    enum class Part { Header, Frames, End } m_next = Part::Header;
};

} // namespace nurv
