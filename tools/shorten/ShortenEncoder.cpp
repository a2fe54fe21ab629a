// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenEncoder.h"

#include "shorten/ShortenSamples.h"
#include "shorten/ShortenSeekTable.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <utility>

namespace nurv::shorten {

ShortenEncoder::Channel::Channel(const StreamHeader &header) : means(header), samples(kMinHistory + header.blockSize) {}

ShortenEncoder::ShortenEncoder(const StreamHeader &header, ByteSink sink, ShortenSeekTable *seekTable)
    : m_header(header), m_sink(std::move(sink)), m_seekTable(seekTable),
      m_writer([this](std::span<const uint8_t> words) { handOver(words); }), m_predictor(header.blockSize),
      m_channels(header.channels, Channel(header)), m_blockSize(header.blockSize)
{
    writeStreamHeader();
}

void ShortenEncoder::handOver(std::span<const uint8_t> words)
{
    if (m_seekTable)
        m_seekTable->watch(words);
    m_sink(words);
}

void ShortenEncoder::writeStreamHeader()
{
    std::array<uint8_t, kStreamOffset> head{};
    std::copy(std::begin(kMagic), std::end(kMagic), head.begin());
    head.back() = static_cast<uint8_t>(m_header.version);
    m_sink(head);
    constexpr uint32_t kSkippedBytes = 0;
    for (const uint32_t field : {static_cast<uint32_t>(m_header.fileType), m_header.channels, m_header.blockSize,
                                 m_header.maxPredictorOrder, m_header.meanCount, kSkippedBytes})
        m_writer.writeLong(field);
}

void ShortenEncoder::writeVerbatim(std::span<const uint8_t> bytes)
{
    while (!bytes.empty()) {
        const size_t size = std::min(bytes.size(), kVerbatimPieceBytes);
        writeFunction(Function::Verbatim);
        m_writer.writeUnsigned(static_cast<uint32_t>(size), kVerbatimSizeBits);
        for (const uint8_t byte : bytes.first(size))
            m_writer.writeUnsigned(byte, kVerbatimByteBits);
        bytes = bytes.subspan(size);
    }
}

void ShortenEncoder::writeBlock(std::span<const uint8_t> frames)
{
    const size_t frameBytes = m_header.channels * bytesPerSample(m_header.fileType);
    const auto count = static_cast<uint32_t>(frames.size() / frameBytes);
    if (count == 0)
        return;
    if (count != m_blockSize) {
        // A point does not tell the block size; whoever starts at the short last block
        // has to read it. By custom the stream's first point stands behind, nevertheless.
        if (m_frames > 0)
            addSeekPointIfWanted();
        writeFunction(Function::BlockSize);
        m_writer.writeLong(count);
        m_blockSize = count;
    }
    loadBlock(frames);
    writeShift();
    addSeekPointIfWanted();
    for (Channel &channel : m_channels)
        writeChannel(channel);
    m_frames += count;
}

uint64_t ShortenEncoder::finish()
{
    writeFunction(Function::Quit);
    m_writer.finish();
    return kStreamOffset + m_writer.position() / 8;
}

void ShortenEncoder::writeFunction(Function function)
{
    m_writer.writeUnsigned(static_cast<uint32_t>(function), kFunctionBits);
}

void ShortenEncoder::loadBlock(std::span<const uint8_t> frames)
{
    const uint8_t *at = frames.data();
    for (Channel &channel : m_channels) {
        loadSamples(m_header.fileType, at, m_channels.size(), block(channel));
        at += bytesPerSample(m_header.fileType);
    }
}

/// Low-order bits that are 0 in all samples of the block need not be coded.
void ShortenEncoder::writeShift()
{
    uint32_t used = 0;
    for (Channel &channel : m_channels) {
        for (const int32_t sample : block(channel))
            used |= static_cast<uint32_t>(sample);
    }
    const unsigned shift = used == 0 ? m_shift : static_cast<unsigned>(std::countr_zero(used));
    if (shift != m_shift) {
        writeFunction(Function::BitShift);
        m_writer.writeUnsigned(shift, kShiftBits);
        m_shift = shift;
    }
    if (m_shift == 0)
        return;
    for (Channel &channel : m_channels) {
        for (int32_t &sample : block(channel))
            sample >>= m_shift;
    }
}

void ShortenEncoder::addSeekPointIfWanted()
{
    if (!m_seekTable || !m_seekTable->wantsPoint(m_frames))
        return;
    ShortenSeekPoint point{.frame = m_frames, .bitPosition = m_writer.position(), .shift = m_shift};
    for (size_t i = 0; i < m_channels.size(); ++i) {
        const Channel &channel = m_channels[i];
        std::reverse_copy(channel.samples.begin(), channel.samples.begin() + kMinHistory, point.history[i].begin());
        for (size_t age = 0; age < channel.means.count(); ++age)
            point.means[i][age] = channel.means.at(age);
    }
    m_seekTable->addPoint(point);
}

void ShortenEncoder::writeChannel(Channel &channel)
{
    const std::span<const int32_t> samples = block(channel);
    if (std::ranges::all_of(samples, [](int32_t sample) { return sample == 0; })) {
        writeFunction(Function::Zero);
    } else {
        const ShortenPredictor::Choice choice = m_predictor.choose(samples, channel.means.level(m_shift));
        writeFunction(choice.function);
        m_writer.writeUnsigned(choice.codeBits - 1, kEnergyBits);
        m_writer.writeFolded(choice.codes, choice.codeBits);
    }
    channel.means.add(std::accumulate(samples.begin(), samples.end(), int64_t{0}), m_blockSize, m_shift);
    const auto newest = channel.samples.begin() + static_cast<std::ptrdiff_t>(m_blockSize);
    std::copy_n(newest, kMinHistory, channel.samples.begin());
}

std::span<int32_t> ShortenEncoder::block(Channel &channel) const
{
    return {channel.samples.data() + kMinHistory, m_blockSize};
}

} // namespace nurv::shorten
