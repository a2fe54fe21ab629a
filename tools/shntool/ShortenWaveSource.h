// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/WaveSource.h"
#include "shorten/ShortenDecoder.h"
#include "support/InputFile.h"

namespace nurv {

/// The file that a Shorten file was made of.
class ShortenWaveSource final : public PieceSource {
public:
    /// Throws ToolError(Read).
    explicit ShortenWaveSource(const std::string &name);

protected:
    bool makePiece() override;

private:
    InputFile m_input;
    shorten::ShortenDecoder m_decoder;
    bool m_hasHead = false;
    bool m_isDone = false;
};

} // namespace nurv
