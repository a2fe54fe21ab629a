// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ApeWaveSource.h"

#include "ape/ApeError.h"

#include <array>

namespace nurv {

namespace {

uint64_t pcmBytes(const ApeHeader &header)
{
    return header.totalBlocks() * header.bytesPerBlock();
}

} // namespace

ApeWaveSource::ApeWaveSource(const std::string &name)
    : m_input(name), m_reader(m_input), m_decoder(*apeLevelFromNumber(m_reader.header().level),
                                                  m_reader.header().bitsPerSample, m_reader.header().channels)
{
}

bool ApeWaveSource::makePiece()
{
    switch (m_next) {
    case Part::Header:
        makeHeader();
        m_next = Part::Frames;
        return true;
    case Part::Frames:
        if (m_framesGiven < m_reader.header().totalFrames) {
            give(m_decoder.decode(m_reader.readFrame(), m_reader.header().blocksOfFrame(m_framesGiven)));
            ++m_framesGiven;
            return true;
        }
        m_next = Part::Nothing;
        makeEnd();
        return false;
    case Part::Nothing: break;
    }
    return false;
}

void ApeWaveSource::makeHeader()
{
    if (!m_reader.hasStoredHeader())
        give(apeWaveHeader(m_reader.header(), pcmBytes(m_reader.header())));
    m_reader.readStoredHeader([this](std::span<const uint8_t> bytes) { give(bytes); });
}

void ApeWaveSource::makeEnd()
{
    m_reader.readStoredTrailing([this](std::span<const uint8_t> bytes) { give(bytes); });
    if (!m_reader.hasStoredHeader() && pcmBytes(m_reader.header()) % 2 != 0)
        give(std::array<uint8_t, 1>{});
    m_reader.checkMd5();
}

} // namespace nurv
