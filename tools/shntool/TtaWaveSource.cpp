// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/TtaWaveSource.h"

#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <array>

namespace nurv {

TtaWaveSource::TtaWaveSource(const std::string &name) : m_input(name), m_reader(m_input) {}

bool TtaWaveSource::makePiece()
{
    const TtaHeader &header = m_reader.header();
    if (m_next == Part::Header) {
        give(canonicalWaveHeader({header.channels, header.sampleRateHz, header.bitsPerSample}, header.pcmByteCount()));
        m_next = Part::Frames;
        return true;
    }
    if (m_next == Part::End)
        return false;
    if (m_framesGiven == header.frameCount()) {
        m_next = Part::End;
        if (header.pcmByteCount() % 2 != 0)
            give(std::array<uint8_t, 1>{});
        return false;
    }
    const TtaFrameState state = m_reader.readFrame();
    if (state != TtaFrameState::Good)
        throw ToolError(ToolError::Kind::Damaged, m_input.name() + ": " + m_reader.describe(state));
    give(m_reader.pcm());
    ++m_framesGiven;
    return true;
}

} // namespace nurv
