// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ShortenWaveSource.h"

namespace nurv {

ShortenWaveSource::ShortenWaveSource(const std::string &name)
    : m_input(name), m_decoder(m_input, [this](std::span<const uint8_t> bytes) { give(bytes); })
{
}

bool ShortenWaveSource::makePiece()
{
    if (!m_hasHead) {
        m_decoder.decodeHead();
        m_hasHead = true;
        return true;
    }
    if (!m_isDone)
        m_isDone = m_decoder.decodeNext() == shorten::Function::Quit;
    return !m_isDone;
}

} // namespace nurv
