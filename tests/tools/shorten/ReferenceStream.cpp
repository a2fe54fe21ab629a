// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReferenceStream.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace nurv::shorten::test {

namespace {

/// One channel's samples of a block.
std::vector<int32_t> blockOf(const std::vector<int32_t> &samples, unsigned channels, unsigned channel, size_t start,
                             size_t frames)
{
    std::vector<int32_t> block;
    for (size_t frame = start; frame < start + frames; ++frame)
        block.push_back(samples[frame * channels + channel]);
    return block;
}

} // namespace

ReferenceStream::ReferenceStream(const Settings &settings) : m_settings(settings)
{
    if (m_settings.version == 0) {
        m_settings.blockSize = 256;
        m_settings.maxOrder = 0;
        m_settings.meanCount = 0;
    }
    m_blockSize = m_settings.blockSize;
    const int64_t start = settings.fileType == 2 ? 128 : settings.fileType == 4 || settings.fileType == 6 ? 32768 : 0;
    const State state{std::vector<int64_t>(std::max<size_t>(3, m_settings.maxOrder)),
                      std::vector<int64_t>(std::max<size_t>(1, m_settings.meanCount), start)};
    m_states.assign(settings.channels, state);
    number(settings.fileType, 4);
    number(settings.channels, 0);
    if (settings.version > 0) {
        number(settings.blockSize, 8);
        number(settings.maxOrder, 2);
        number(settings.meanCount, 0);
        number(static_cast<uint32_t>(settings.skipped.size()), 1);
        for (const uint8_t byte : settings.skipped)
            number(byte, 7);
    }
}

void ReferenceStream::bit(bool value)
{
    m_bits.push_back(value);
}

void ReferenceStream::uvar(uint32_t value, unsigned lowBits)
{
    for (uint64_t i = 0; i < uint64_t{value} >> lowBits; ++i)
        bit(false);
    bit(true);
    for (unsigned i = lowBits; i > 0; --i)
        bit((value >> (i - 1) & 1) != 0);
}

void ReferenceStream::var(int32_t value, unsigned lowBits)
{
    uvar(value >= 0 ? static_cast<uint32_t>(2 * value) : static_cast<uint32_t>(-2 * value - 1), lowBits + 1);
}

/// Version 0 stores the energy one larger than the number of bits.
void ReferenceStream::writeResidual(int32_t value, unsigned energy)
{
    var(value, m_settings.version == 0 ? energy - 1 : energy);
}

void ReferenceStream::number(uint32_t value, unsigned lowBitsOfVersion0)
{
    if (m_settings.version == 0)
        return uvar(value, lowBitsOfVersion0);
    const auto bits = static_cast<unsigned>(std::bit_width(value));
    uvar(bits, 2);
    uvar(value, bits);
}

void ReferenceStream::verbatim(std::span<const uint8_t> bytes)
{
    uvar(9, 2);
    uvar(static_cast<uint32_t>(bytes.size()), 5);
    for (const uint8_t byte : bytes)
        uvar(byte, 8);
}

void ReferenceStream::setBlockSize(uint32_t frames)
{
    uvar(5, 2);
    number(frames, static_cast<unsigned>(std::bit_width(m_blockSize)) - 1);
    m_blockSize = frames;
}

void ReferenceStream::setShift(unsigned shift)
{
    uvar(6, 2);
    uvar(shift, 2);
    m_shift = shift;
}

void ReferenceStream::diff(unsigned order, unsigned energy, std::span<const int32_t> samples)
{
    uvar(order, 2);
    uvar(energy, 3);
    const std::vector<int64_t> block = shiftedDown(samples);
    std::vector<int64_t> x = m_states[m_channel].past;
    const int64_t c = level();
    for (const int64_t value : block) {
        const size_t n = x.size();
        const int64_t predictions[] = {c, x[n - 1], 2 * x[n - 1] - x[n - 2], 3 * (x[n - 1] - x[n - 2]) + x[n - 3]};
        const auto residual = static_cast<int32_t>(value - predictions[order]);
        writeResidual(residual, energy);
        x.push_back(value);
    }
    endBlock(block);
}

void ReferenceStream::zero()
{
    uvar(8, 2);
    endBlock(std::vector<int64_t>(m_blockSize));
}

void ReferenceStream::linear(std::span<const int32_t> coefficients, unsigned energy, std::span<const int32_t> samples)
{
    uvar(7, 2);
    uvar(energy, 3);
    uvar(static_cast<uint32_t>(coefficients.size()), 2);
    for (const int32_t coefficient : coefficients)
        var(coefficient, 5);
    const std::vector<int64_t> block = shiftedDown(samples);
    std::vector<int64_t> y = m_states[m_channel].past;
    const int64_t c = level();
    for (int64_t &value : y)
        value -= c;
    for (const int64_t value : block) {
        int64_t sum = m_settings.version >= 2 ? 32 : 0;
        for (size_t j = 0; j < coefficients.size(); ++j)
            sum += coefficients[j] * y[y.size() - 1 - j];
        writeResidual(static_cast<int32_t>(value - c - (sum >> 5)), energy);
        y.push_back(value - c);
    }
    endBlock(block);
}

void ReferenceStream::quit()
{
    uvar(4, 2);
}

Bytes ReferenceStream::finish(bool endBit)
{
    if (endBit && m_bits.size() % 32 != 0)
        bit(true);
    while (m_bits.size() % 32 != 0)
        bit(false);
    Bytes bytes = {'a', 'j', 'k', 'g', static_cast<uint8_t>(m_settings.version)};
    for (size_t i = 0; i < m_bits.size(); i += 8) {
        unsigned byte = 0;
        for (size_t j = 0; j < 8; ++j)
            byte = byte << 1 | (m_bits[i + j] ? 1U : 0U);
        bytes.push_back(static_cast<uint8_t>(byte));
    }
    return bytes;
}

int64_t ReferenceStream::level() const
{
    const std::vector<int64_t> &means = m_states[m_channel].means;
    if (m_settings.meanCount == 0)
        return means[0];
    const auto count = static_cast<int64_t>(means.size());
    const int64_t sum = std::accumulate(means.begin(), means.end(), m_settings.version < 2 ? 0 : count / 2);
    return m_settings.version < 2 ? sum / count : sum / count >> m_shift;
}

std::vector<int64_t> ReferenceStream::shiftedDown(std::span<const int32_t> samples) const
{
    std::vector<int64_t> block;
    for (const int32_t sample : samples)
        block.push_back(sample >> m_shift);
    return block;
}

void ReferenceStream::endBlock(std::span<const int64_t> block)
{
    State &state = m_states[m_channel];
    if (m_settings.meanCount > 0) {
        const int64_t half = m_settings.version < 2 ? 0 : m_blockSize / 2;
        const int64_t mean = std::accumulate(block.begin(), block.end(), half) / m_blockSize;
        state.means.erase(state.means.begin());
        state.means.push_back(m_settings.version < 2 ? mean : mean * (int64_t{1} << m_shift));
    }
    state.past.insert(state.past.end(), block.begin(), block.end());
    m_channel = (m_channel + 1) % m_states.size();
}

Bytes mixedStream(const Wave &wave, ReferenceStream::Settings settings, bool endBit, std::span<const uint8_t> behind)
{
    settings.channels = wave.channels;
    settings.fileType = wave.bits == 8 ? 2 : 5;
    if (settings.version == 0)
        settings.maxOrder = 0;
    ReferenceStream stream(settings);
    const uint32_t blockSize = settings.version == 0 ? 256 : settings.blockSize;
    stream.verbatim(wave.header({}, wave.data().size(), behind.size()));
    std::vector<int32_t> samples = wave.samples();
    if (wave.bits == 8) {
        for (int32_t &sample : samples)
            sample += 128;
    }
    const std::vector<std::vector<int32_t>> predictors = {{60, -29}, {31}, {90, -87, 28}};
    unsigned turn = 0;
    for (size_t start = 0; start < wave.frames; start += blockSize) {
        const size_t frames = std::min<size_t>(blockSize, wave.frames - start);
        if (frames < blockSize)
            stream.setBlockSize(static_cast<uint32_t>(frames));
        for (unsigned channel = 0; channel < wave.channels; ++channel, ++turn) {
            const std::vector<int32_t> block = blockOf(samples, wave.channels, channel, start, frames);
            const unsigned energy = wave.bits == 8 ? 4 : 9;
            const std::vector<int32_t> &predictor = predictors[turn / 5 % predictors.size()];
            if (std::ranges::count(block, 0) == std::ssize(block))
                stream.zero();
            else if (turn % 5 == 4 && predictor.size() <= settings.maxOrder && frames >= 3)
                stream.linear(predictor, energy, block);
            else
                stream.diff(turn % 4, energy, block);
        }
    }
    if (!behind.empty())
        stream.verbatim(behind);
    stream.quit();
    return stream.finish(endBit);
}

} // namespace nurv::shorten::test
