// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FlacWaveSource.h"

#include "shntool/PcmWaveHeader.h"
#include "sound/FlacDecoder.h"

#include <vector>

namespace nurv {

FlacWaveSource::FlacWaveSource(const std::string &name)
    : m_decoder(std::make_unique<FlacDecoder>(name, [this](std::vector<uint8_t> &pcm, unsigned frames) {
          giveAll(pcm);
          m_samplesGiven += frames;
      }))
{
    const FlacStreamInfo &info = m_decoder->info();
    m_header = pcmHeader(info.sampleRateHz, info.channels, info.bitsPerSample, info.channelMask);
    m_totalSamples = info.totalSamples;
    if (m_totalSamples == 0)
        countSamples(name);
    if (info.md5 == std::array<uint8_t, 16>{})
        return;
    if (info.bitsPerSample == m_header.bitsPerSample && info.bitsPerSample != 8)
        m_soundMd5 = info.md5;
    else
        m_decoder->checkMd5();
}

FlacWaveSource::~FlacWaveSource() = default;

void FlacWaveSource::countSamples(const std::string &name)
{
    FlacDecoder counter(name, [this](std::vector<uint8_t> &, unsigned frames) { m_totalSamples += frames; });
    while (counter.next()) {
    }
}

uint64_t FlacWaveSource::dataBytes() const
{
    return m_totalSamples * m_header.blockAlign;
}

bool FlacWaveSource::makePiece()
{
    switch (m_next) {
    case Part::Header:
        give(makeWaveHeader(m_header, dataBytes()));
        m_next = Part::Frames;
        return true;
    case Part::Frames:
        // What some taggers put behind the sound is not read.
        if (m_samplesGiven < m_totalSamples && m_decoder->next())
            return true;
        m_next = Part::Nothing;
        if (m_samplesGiven != m_totalSamples)
            m_decoder->fail();
        m_decoder->finish();
        if (dataBytes() % 2 != 0)
            give(std::array<uint8_t, 1>{});
        return false;
    case Part::Nothing: break;
    }
    return false;
}

} // namespace nurv
