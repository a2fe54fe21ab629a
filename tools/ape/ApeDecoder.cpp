// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeDecoder.h"

#include "ape/ApeError.h"
#include "ape/ApeFrameDecoder.h"

#include <array>
#include <string>

namespace nurv {

ApeDecoder::ApeDecoder(InputFile &input, ApeInstructionSet set) : m_reader(input), m_set(set) {}

void ApeDecoder::decode(const ByteSink &sink, const std::function<void(size_t)> &onBlocks)
{
    const uint64_t pcmBytes = header().totalBlocks() * header().bytesPerBlock();
    if (!m_reader.hasStoredHeader())
        sink(apeWaveHeader(header(), pcmBytes));
    m_reader.readStoredHeader(sink);
    decodeFrames(sink, onBlocks);
    m_reader.readStoredTrailing(sink);
    if (!m_reader.hasStoredHeader() && pcmBytes % 2 != 0)
        sink(std::array<uint8_t, 1>{});
    m_reader.checkMd5();
}

void ApeDecoder::decodeFrames(const ByteSink &sink, const std::function<void(size_t)> &onBlocks)
{
    ApeFrameDecoder decoder(*apeLevelFromNumber(header().level), header().bitsPerSample, header().channels, m_set);
    for (uint32_t i = 0; i < header().totalFrames; ++i) {
        const std::span<const uint8_t> frame = m_reader.readFrame();
        try {
            sink(decoder.decode(frame, header().blocksOfFrame(i), onBlocks));
        } catch (const ApeError &error) {
            throw ApeError(error.number(), m_reader.inputName() + ": frame " + std::to_string(i + 1) + " of "
                                               + std::to_string(header().totalFrames) + ": " + error.what());
        }
    }
}

} // namespace nurv
