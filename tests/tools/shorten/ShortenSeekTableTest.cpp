// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenSeekTable.h"
#include "ShortenTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>

using namespace nurv::shorten;
using namespace nurv::shorten::test;

namespace {

/// The table at the end of a file, found as players find it: by the last 12 bytes.
class SeekTable {
public:
    explicit SeekTable(const Bytes &file) : m_file(file)
    {
        const size_t size = file.size();
        if (size < 12 || std::string(file.end() - 8, file.end()) != "SHNAMPSK")
            return;
        m_start = size - word(size - 12);
        m_count = (size - 12 - (m_start + 12)) / 80;
    }

    [[nodiscard]] bool isPresent() const { return m_start != 0; }
    [[nodiscard]] size_t start() const { return m_start; }
    [[nodiscard]] size_t count() const { return m_count; }
    [[nodiscard]] size_t entry(size_t index) const { return m_start + 12 + index * 80; }
    [[nodiscard]] uint32_t word(size_t at) const { return half(at) | half(at + 2) << 16; }
    [[nodiscard]] uint32_t half(size_t at) const { return m_file[at] | uint32_t{m_file[at + 1]} << 8; }

private:
    const Bytes &m_file;
    size_t m_start = 0;
    size_t m_count = 0;
};

/// Decodes from the middle of a stream with nothing but an entry of its table: refills
/// a buffer of 512 bytes, takes words of 32 bits, one bit after the other.
class SeekingReader {
public:
    SeekingReader(const Bytes &file, const SeekTable &table, size_t index, size_t channels, size_t meanCount)
        : m_file(file), m_streamBytes(table.word(table.start() + 8)), m_channels(channels), m_meanCount(meanCount)
    {
        const size_t entry = table.entry(index);
        m_fillEnd = table.word(entry + 4);
        m_fillStart = table.word(entry + 8);
        m_left = table.half(entry + 12);
        m_taken = table.half(entry + 14);
        m_bits = table.half(entry + 16);
        m_word = table.word(entry + 18);
        m_shift = table.half(entry + 22);
        for (size_t channel = 0; channel < channels; ++channel) {
            for (size_t i = 0; i < 3; ++i)
                m_past[channel].push_back(static_cast<int32_t>(table.word(entry + 24 + channel * 12 + 4 * (2 - i))));
            for (size_t i = 0; i < std::max<size_t>(meanCount, 1); ++i)
                m_means[channel].push_back(static_cast<int32_t>(table.word(entry + 48 + channel * 16 + 4 * i)));
        }
        EXPECT_EQ((m_fillStart - 5) % 512, 0U);
        EXPECT_EQ(m_fillEnd, std::min(m_fillStart + 512, m_streamBytes));
        EXPECT_EQ(m_taken + m_left, m_fillEnd - m_fillStart);
        EXPECT_LT(m_bits, 32U);
        EXPECT_EQ(m_word, wordAt(m_fillStart + m_taken - 4));
    }

    /// Interleaved, until that many or the end of the stream.
    std::vector<int32_t> decode(size_t count, uint32_t blockSize)
    {
        std::vector<int32_t> samples;
        while (samples.size() < count) {
            std::vector<std::vector<int32_t>> blocks;
            while (blocks.size() < m_channels) {
                const uint32_t function = uvar(2);
                if (function == 4 || function == 9)
                    return samples;
                if (function == 5)
                    blockSize = uvar(uvar(2));
                else if (function == 6)
                    m_shift = uvar(2);
                else
                    blocks.push_back(decodeBlock(function, blocks.size(), blockSize));
            }
            for (size_t frame = 0; frame < blockSize; ++frame) {
                for (const std::vector<int32_t> &block : blocks)
                    samples.push_back(block[frame]);
            }
        }
        return samples;
    }

private:
    std::vector<int32_t> decodeBlock(uint32_t function, size_t channel, uint32_t blockSize)
    {
        std::vector<int32_t> &x = m_past[channel];
        std::vector<int32_t> &means = m_means[channel];
        const auto meanCount = static_cast<int32_t>(m_meanCount);
        const int32_t level = meanCount == 0
                                  ? means[0]
                                  : std::accumulate(means.begin(), means.end(), meanCount / 2) / meanCount >> m_shift;
        const uint32_t energy = function == 8 ? 0 : uvar(3);
        int64_t sum = blockSize / 2;
        std::vector<int32_t> block;
        for (uint32_t i = 0; i < blockSize; ++i) {
            const size_t n = x.size();
            const std::array<int32_t, 4> predictions = {level, x[n - 1], 2 * x[n - 1] - x[n - 2],
                                                        3 * (x[n - 1] - x[n - 2]) + x[n - 3]};
            x.push_back(function == 8 ? 0 : var(energy) + predictions.at(function));
            sum += x.back();
            block.push_back(x.back() * (1 << m_shift));
        }
        if (meanCount > 0) {
            means.erase(means.begin());
            means.push_back(static_cast<int32_t>(sum / blockSize) * (1 << m_shift));
        }
        return block;
    }

    uint32_t wordAt(size_t at) const
    {
        return uint32_t{m_file[at]} << 24 | uint32_t{m_file[at + 1]} << 16 | uint32_t{m_file[at + 2]} << 8
               | m_file[at + 3];
    }

    bool bit()
    {
        if (m_bits == 0) {
            if (m_left == 0) {
                m_fillStart = m_fillEnd;
                m_fillEnd = std::min(m_fillStart + 512, m_streamBytes);
                m_left = m_fillEnd - m_fillStart;
                m_taken = 0;
            }
            m_word = wordAt(m_fillStart + m_taken);
            m_taken += 4;
            m_left -= 4;
            m_bits = 32;
        }
        return (m_word >> --m_bits & 1) != 0;
    }

    uint32_t uvar(unsigned lowBits)
    {
        uint32_t value = 0;
        while (!bit())
            ++value;
        for (unsigned i = 0; i < lowBits; ++i)
            value = value << 1 | (bit() ? 1 : 0);
        return value;
    }

    int32_t var(unsigned lowBits)
    {
        const uint32_t code = uvar(lowBits + 1);
        return static_cast<int32_t>(code % 2 == 0 ? code / 2 : ~(code / 2));
    }

    const Bytes &m_file;
    uint32_t m_streamBytes;
    size_t m_channels;
    size_t m_meanCount;
    uint32_t m_fillStart = 0;
    uint32_t m_fillEnd = 0;
    uint32_t m_left = 0;
    uint32_t m_taken = 0;
    uint32_t m_bits = 0;
    uint32_t m_word = 0;
    uint32_t m_shift = 0;
    std::array<std::vector<int32_t>, 2> m_past;
    std::array<std::vector<int32_t>, 2> m_means;
};

void expectSeekable(const Wave &wave, uint32_t blockSize, uint32_t meanCount)
{
    SCOPED_TRACE(testing::PrintToString(wave) + ", block size " + std::to_string(blockSize));
    const Bytes file = encoded(wave.file(), blockSize, meanCount, true);
    const SeekTable table(file);
    ASSERT_TRUE(table.isPresent());
    EXPECT_EQ(std::string(file.begin() + static_cast<std::ptrdiff_t>(table.start()),
                          file.begin() + static_cast<std::ptrdiff_t>(table.start()) + 4),
              "SEEK");
    EXPECT_EQ(table.word(table.start() + 4), 1U);
    EXPECT_EQ(table.word(table.start() + 8), table.start());
    std::vector<int32_t> samples = wave.samples();
    if (wave.bits == 8) {
        for (int32_t &sample : samples)
            sample += 128;
    }
    ASSERT_GT(table.count(), 0U);
    for (size_t i = 0; i < table.count(); ++i) {
        const uint32_t frame = table.word(table.entry(i));
        const auto atOrAfter = static_cast<uint32_t>((i * 25600 + blockSize - 1) / blockSize * blockSize);
        EXPECT_EQ(frame, atOrAfter);
        SeekingReader reader(file, table, i, wave.channels, meanCount);
        const auto from = samples.begin() + std::ptrdiff_t{frame} * wave.channels;
        const auto wanted = std::min<std::ptrdiff_t>(60000, samples.end() - from);
        std::vector<int32_t> found = reader.decode(static_cast<size_t>(wanted), std::min(blockSize, kMaxBlockSize));
        ASSERT_GE(std::ssize(found), wanted);
        EXPECT_TRUE(std::equal(from, from + wanted, found.begin())) << "entry " << i;
    }
    const size_t last = table.word(table.entry(table.count() - 1));
    EXPECT_LE(wave.frames, (last / 25600 + 1) * 25600 + blockSize);
}

size_t pointsIn(size_t frames)
{
    const Bytes file = encoded(Wave{.frames = frames}.file(), kDefaultBlockSize, kDefaultMeanCount, true);
    return SeekTable(file).count();
}

} // namespace

TEST(ShortenSeekTable, LeadsIntoTheMiddleOfEverySound)
{
    for (const Sound sound : kAllSounds) {
        for (const unsigned bits : {8U, 16U}) {
            for (const unsigned channels : {1U, 2U})
                expectSeekable({.sound = sound, .frames = 60000, .channels = channels, .bits = bits}, 256, 4);
        }
    }
}

TEST(ShortenSeekTable, LeadsToTheFirstBlockAfterItsPoint)
{
    for (const uint32_t blockSize : {37U, 100U, 1000U, 12345U})
        expectSeekable({.sound = Sound::Shifts, .frames = 90000}, blockSize, 4);
    for (const uint32_t meanCount : {0U, 1U, 3U})
        expectSeekable({.sound = Sound::Shifts, .frames = 60000}, 256, meanCount);
}

TEST(ShortenSeekTable, LeadsIntoAShortLastBlock)
{
    for (const Sound sound : {Sound::Music, Sound::Shifts, Sound::Silence}) {
        for (const size_t frames : {25601U, 25855U, 51201U})
            expectSeekable({.sound = sound, .frames = frames}, 256, 4);
    }
}

TEST(ShortenSeekTable, HasAPointForEvery25600Frames)
{
    EXPECT_EQ(pointsIn(1), 1U);
    EXPECT_EQ(pointsIn(25599), 1U);
    EXPECT_EQ(pointsIn(25600), 1U);
    EXPECT_EQ(pointsIn(25601), 2U);
    EXPECT_EQ(pointsIn(256001), 11U);
}

TEST(ShortenSeekTable, SkipsThePointsThatOneBlockPassesOver)
{
    const Bytes file = encoded(Wave{.frames = 200000, .channels = 1}.file(), 65535, 4, true);
    const SeekTable table(file);
    ASSERT_EQ(table.count(), 4U);
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(table.word(table.entry(i)), i * 65535);
}

TEST(ShortenSeekTable, IsLeftOutWithoutSamples)
{
    EXPECT_EQ(encoded(Wave{.frames = 0}.file(), 256, 4, true), encoded(Wave{.frames = 0}.file()));
}

TEST(ShortenSeekTable, HasRoomForTwoChannelsAndFourMeans)
{
    EXPECT_TRUE(ShortenSeekTable::canDescribe({.channels = 1}));
    EXPECT_TRUE(ShortenSeekTable::canDescribe({.channels = 2}));
    EXPECT_FALSE(ShortenSeekTable::canDescribe({.channels = 3}));
    EXPECT_FALSE(ShortenSeekTable::canDescribe({.channels = 2, .meanCount = 5}));
    EXPECT_FALSE(ShortenSeekTable::canDescribe({.channels = 2, .maxPredictorOrder = 4}));
}

TEST(ShortenSeekTable, GivesUpWhereItsNumbersEnd)
{
    const auto tableWith = [](const ShortenSeekPoint &point, uint64_t streamBytes) {
        ShortenSeekTable table;
        table.addPoint({.frame = 0, .bitPosition = 1});
        table.addPoint(point);
        return table.finish(streamBytes).size();
    };
    EXPECT_EQ(tableWith({.frame = 25600, .bitPosition = 2000}, 0xFFFFFFFF), 12U + 2 * 80 + 12);
    EXPECT_EQ(tableWith({.frame = 25600, .bitPosition = 2000}, 0x100000000), 0U);
    EXPECT_EQ(tableWith({.frame = 0x100000000, .bitPosition = 2000}, 4000), 0U);
    EXPECT_EQ(tableWith({.frame = 25600, .bitPosition = uint64_t{8} << 32}, 4000), 0U);
}
