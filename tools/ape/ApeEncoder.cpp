// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeEncoder.h"

#include "ape/ApeError.h"
#include "ape/ApeFileWriter.h"
#include "ape/ApeFrameEncoder.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"

#include <algorithm>

namespace nurv {

namespace {

/// Programs that write to a pipe announce about this much when they do not know better.
constexpr uint32_t kLeastGuess = 0x7FFF0000;

} // namespace

ApeEncoder::ApeEncoder(InputFile &input, ApeLevel level, ApeInstructionSet set)
    : m_input(input), m_wave(input), m_level(level), m_set(set),
      m_isLengthUncertain(m_wave.hasUnknownSize() || (!input.size() && m_wave.declaredDataBytes() >= kLeastGuess))
{
    checkFormat();
}

void ApeEncoder::checkFormat() const
{
    const WaveFormat &format = m_wave.format();
    const auto refuse = [this](ApeErrorNumber number, const std::string &why) {
        throw ApeError(number, m_input.name() + ": " + why);
    };
    if (!format.isIntegerPcm())
        refuse(ApeErrorNumber::UnsupportedFileType, "only integer PCM is supported");
    if (format.bitsPerSample != 8 && format.bitsPerSample != 16 && format.bitsPerSample != 24)
        refuse(ApeErrorNumber::UnsupportedBitDepth, "only 8, 16 and 24 bits per sample are supported");
    if (format.channels != 1 && format.channels != 2)
        refuse(ApeErrorNumber::UnsupportedChannels, "only one and two channels are supported");
    if (format.sampleRateHz == 0)
        refuse(ApeErrorNumber::UnsupportedSampleRate, "the sample rate is 0");
}

uint64_t ApeEncoder::expectedBlocks() const
{
    const std::optional<uint64_t> present = m_wave.payloadBytesPresent();
    const uint64_t announced = m_isLengthUncertain ? 0 : m_wave.payloadBytesDeclared().value_or(0);
    return present.value_or(announced) / m_wave.format().blockAlign;
}

void ApeEncoder::encode(OutputFile &output, const std::function<void(size_t)> &onBlocks)
{
    const WaveFormat &format = m_wave.format();
    ApeHeader header;
    header.level = static_cast<uint16_t>(m_level);
    header.blocksPerFrame = apeBlocksPerFrame(m_level);
    header.bitsPerSample = format.bitsPerSample;
    header.channels = format.channels;
    header.sampleRateHz = format.sampleRateHz;

    std::optional<uint32_t> frames;
    if (!m_isLengthUncertain) {
        frames = static_cast<uint32_t>((expectedBlocks() + header.blocksPerFrame - 1) / header.blocksPerFrame);
        if (*frames == 0)
            throw ApeError(ApeErrorNumber::InputTooSmall, m_input.name() + ": there is no sound to compress");
    }
    ApeFileWriter writer(output, header, m_wave.header(), frames);
    const uint64_t blocks = encodeFrames(writer, onBlocks);
    if (blocks == 0)
        throw ApeError(ApeErrorNumber::InputTooSmall, m_input.name() + ": there is no sound to compress");
    const bool isGuess = m_wave.hasUnknownSize() || m_wave.declaredDataBytes() / format.blockAlign > blocks;
    if (m_isLengthUncertain && isGuess)
        writer.forgetStoredHeader();
    else
        storeTrailing(writer);
    m_input.checkEnd();
    writer.finish();
}

uint64_t ApeEncoder::encodeFrames(ApeFileWriter &writer, const std::function<void(size_t)> &onBlocks)
{
    const WaveFormat &format = m_wave.format();
    ApeFrameEncoder encoder(m_level, format.bitsPerSample, format.channels, m_set);
    std::vector<uint8_t> pcm(size_t{apeBlocksPerFrame(m_level)} * format.blockAlign);
    uint64_t blocks = 0;
    while (const size_t count = m_wave.readPayload(pcm)) {
        const auto frameBlocks = static_cast<uint32_t>(count / format.blockAlign);
        writer.addFrame(encoder.encode(std::span<const uint8_t>(pcm).first(count), onBlocks), frameBlocks);
        blocks += frameBlocks;
        if (count < pcm.size())
            break;
    }
    return blocks;
}

void ApeEncoder::storeTrailing(ApeFileWriter &writer)
{
    std::vector<uint8_t> bytes(size_t{64} * 1024);
    while (const size_t count = m_wave.readTrailing(bytes))
        writer.addStoredTrailing(std::span<const uint8_t>(bytes).first(count));
}

} // namespace nurv
