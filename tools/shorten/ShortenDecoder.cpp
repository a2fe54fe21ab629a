// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenDecoder.h"

#include "shorten/ShortenSamples.h"
#include "support/Id3v2.h"
#include "support/InputFile.h"
#include "support/ToolError.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <utility>

namespace nurv::shorten {

namespace {

/// Sums may wrap around in damaged streams.
constexpr int32_t wrapped(uint32_t value)
{
    return static_cast<int32_t>(value);
}

constexpr uint32_t bits(int32_t value)
{
    return static_cast<uint32_t>(value);
}

void addTo(std::span<int32_t> values, int32_t offset)
{
    for (int32_t &value : values)
        value = wrapped(bits(value) + bits(offset));
}

} // namespace

ShortenDecoder::Channel::Channel(const StreamHeader &header)
    : means(header), samples(std::max(header.maxPredictorOrder, kMinHistory) + header.blockSize)
{
}

ShortenDecoder::ShortenDecoder(InputFile &input, ByteSink sink)
    : m_input(input), m_sink(std::move(sink)), m_reader(input)
{
}

void ShortenDecoder::decodeHead()
{
    skipId3v2Tags(m_input);
    readStreamHeader();
    for (m_function = readFunction(); m_function == Function::Verbatim; m_function = readFunction())
        copyVerbatim();
}

void ShortenDecoder::decodeRest()
{
    while (decodeNext() != Function::Quit) {
    }
}

Function ShortenDecoder::decodeNext()
{
    const Function function = m_function;
    switch (function) {
    case Function::Quit:
        if (m_channel != 0)
            fail("it ends between the channels of a block");
        return function;
    case Function::Verbatim: copyVerbatim(); break;
    case Function::BlockSize: changeBlockSize(); break;
    case Function::BitShift: changeShift(); break;
    default: decodeBlock(function);
    }
    m_function = readFunction();
    return function;
}

void ShortenDecoder::readStreamHeader()
{
    std::array<uint8_t, kStreamOffset> head{};
    if (m_input.read(head) < head.size() || !std::equal(std::begin(kMagic), std::end(kMagic), head.begin()))
        throw ToolError(ToolError::Kind::InvalidInput, m_input.name() + ": this is no Shorten file");
    m_header.version = head.back();
    if (m_header.version > kMaxVersion) {
        throw ToolError(ToolError::Kind::UnsupportedFormat, m_input.name() + ": Shorten files of version "
                                                                + std::to_string(m_header.version)
                                                                + " are not supported");
    }
    m_header.fileType = FileType{readHeaderField(4)};
    m_header.channels = readHeaderField(0);
    uint32_t skippedBytes = 0;
    if (m_header.version == 0) {
        m_header.meanCount = 0;
    } else {
        m_header.blockSize = readHeaderField(8);
        m_header.maxPredictorOrder = readHeaderField(2);
        m_header.meanCount = readHeaderField(0);
        skippedBytes = readHeaderField(1);
    }
    checkHeader();
    m_blockSize = m_header.blockSize;
    m_channels.assign(m_header.channels, Channel(m_header));
    for (; skippedBytes > 0; --skippedBytes) {
        const auto byte = static_cast<uint8_t>(readHeaderField(7));
        m_sink({&byte, 1});
    }
}

void ShortenDecoder::checkHeader() const
{
    if (!isKnown(m_header.fileType)) {
        throw ToolError(ToolError::Kind::UnsupportedFormat,
                        m_input.name() + ": Shorten files of sample type "
                            + std::to_string(static_cast<uint32_t>(m_header.fileType))
                            + " (logarithmic samples, or unknown) are not supported");
    }
    if (m_header.channels < 1 || m_header.channels > kMaxChannels)
        fail("it has " + std::to_string(m_header.channels) + " channels");
    if (m_header.blockSize < 1 || m_header.blockSize > kMaxBlockSize)
        fail("its block size is " + std::to_string(m_header.blockSize));
    if (m_header.maxPredictorOrder > kMaxPredictorOrder)
        fail("its predictor order is " + std::to_string(m_header.maxPredictorOrder));
    if (m_header.meanCount > kMaxMeanCount)
        fail("it remembers " + std::to_string(m_header.meanCount) + " means");
}

/// `uint(lowBits)`.
uint32_t ShortenDecoder::readHeaderField(unsigned lowBits)
{
    return m_header.version == 0 ? m_reader.readUnsigned(lowBits) : m_reader.readLong();
}

Function ShortenDecoder::readFunction()
{
    const uint32_t code = m_reader.readUnsigned(kFunctionBits);
    if (code > static_cast<uint32_t>(Function::Verbatim))
        fail("it has a command " + std::to_string(code));
    return Function{code};
}

void ShortenDecoder::copyVerbatim()
{
    uint32_t left = m_reader.readUnsigned(kVerbatimSizeBits);
    std::array<uint8_t, kVerbatimPieceBytes> piece{};
    while (left > 0) {
        const size_t size = std::min<size_t>(left, piece.size());
        for (size_t i = 0; i < size; ++i)
            piece[i] = static_cast<uint8_t>(m_reader.readUnsigned(kVerbatimByteBits));
        m_sink({piece.data(), size});
        left -= static_cast<uint32_t>(size);
    }
}

void ShortenDecoder::changeBlockSize()
{
    const auto lowBits = static_cast<unsigned>(std::bit_width(m_blockSize) - 1);
    const uint32_t size = readHeaderField(lowBits);
    if (size < 1 || size > kMaxBlockSize)
        fail("its block size is " + std::to_string(size));
    if (m_channel != 0)
        fail("its block size changes between the channels of a block");
    m_blockSize = size;
    for (Channel &channel : m_channels)
        channel.samples.resize(std::max(channel.samples.size(), history() + size));
}

void ShortenDecoder::changeShift()
{
    const uint32_t shift = m_reader.readUnsigned(kShiftBits);
    if (shift > kMaxShift)
        fail("it shifts by " + std::to_string(shift) + " bits");
    m_shift = shift;
}

void ShortenDecoder::decodeBlock(Function function)
{
    Channel &channel = m_channels[m_channel];
    if (function == Function::Zero)
        std::ranges::fill(block(channel), 0);
    else if (function == Function::Qlpc)
        predictLinear(channel);
    else
        predictDiff(function, channel);
    finishBlock(channel);
}

void ShortenDecoder::predictDiff(Function function, Channel &channel)
{
    readResiduals(channel, readEnergy());
    const std::span<int32_t> samples = block(channel);
    uint32_t last = bits(samples.data()[-1]);
    // The differences of first and second order just before the block.
    uint32_t slope = last - bits(samples.data()[-2]);
    uint32_t bend = slope - (bits(samples.data()[-2]) - bits(samples.data()[-3]));
    switch (function) {
    case Function::Diff0: addTo(samples, channel.means.level(m_shift)); break;
    case Function::Diff1:
        for (int32_t &sample : samples)
            sample = wrapped(last += bits(sample));
        break;
    case Function::Diff2:
        for (int32_t &sample : samples)
            sample = wrapped(last += slope += bits(sample));
        break;
    default:
        for (int32_t &sample : samples)
            sample = wrapped(last += slope += bend += bits(sample));
    }
}

/// QLPC predicts from samples less the expected level, the history's too.
void ShortenDecoder::predictLinear(Channel &channel)
{
    const uint32_t energy = readEnergy();
    const uint32_t order = m_reader.readUnsigned(kOrderBits);
    if (order > m_header.maxPredictorOrder)
        fail("a block's predictor order is " + std::to_string(order));
    m_coefficients.resize(order);
    for (int32_t &coefficient : m_coefficients)
        coefficient = m_reader.readSigned(kCoefficientBits);
    readResiduals(channel, energy);

    // Not a half, as rounding would be: it is what the format does.
    const uint32_t rounding = m_header.version >= 2 ? 1U << kCoefficientBits : 0;
    const int32_t level = channel.means.level(m_shift);
    const std::span<int32_t> all(channel.samples.data(), history() + m_blockSize);
    addTo(all.first(history()), wrapped(0U - bits(level)));
    for (size_t i = history(); i < all.size(); ++i) {
        uint32_t sum = rounding;
        for (size_t j = 0; j < order; ++j)
            sum += bits(m_coefficients[j]) * bits(all[i - 1 - j]);
        all[i] = wrapped(bits(all[i]) + bits(wrapped(sum) >> kCoefficientBits));
    }
    addTo(all, level);
}

void ShortenDecoder::readResiduals(Channel &channel, uint32_t energy)
{
    // In version 0 the stored number counts the sign's bit.
    m_reader.readResiduals(m_header.version == 0 ? energy : energy + 1, block(channel));
}

uint32_t ShortenDecoder::readEnergy()
{
    const uint32_t energy = m_reader.readUnsigned(kEnergyBits);
    if (energy > kMaxEnergy)
        fail("a block's energy is " + std::to_string(energy));
    return energy;
}

/// Remembers what later blocks look back to and, after the last channel, hands over
/// the frames.
void ShortenDecoder::finishBlock(Channel &channel)
{
    const std::span<int32_t> samples = block(channel);
    channel.means.add(std::accumulate(samples.begin(), samples.end(), int64_t{0}), m_blockSize, m_shift);
    const size_t sampleBytes = bytesPerSample(m_header.fileType);
    m_bytes.resize(m_blockSize * m_channels.size() * sampleBytes);
    storeSamples(m_header.fileType, samples, m_shift, m_bytes.data() + m_channel * sampleBytes, m_channels.size());
    const auto newest = channel.samples.begin() + static_cast<std::ptrdiff_t>(m_blockSize);
    std::copy_n(newest, history(), channel.samples.begin());
    if (++m_channel == m_channels.size()) {
        m_channel = 0;
        m_sink(m_bytes);
    }
}

size_t ShortenDecoder::history() const
{
    return std::max(m_header.maxPredictorOrder, kMinHistory);
}

std::span<int32_t> ShortenDecoder::block(Channel &channel) const
{
    return {channel.samples.data() + history(), m_blockSize};
}

void ShortenDecoder::fail(const std::string &why) const
{
    throw ToolError(ToolError::Kind::Damaged, m_input.name() + ": the Shorten stream is damaged: " + why);
}

} // namespace nurv::shorten
