// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeResidualCoding.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace nurv::test {

namespace {

std::vector<uint8_t> codedBytes(const std::vector<int32_t> &residuals)
{
    std::vector<uint8_t> bytes(residuals.size() * kApeMaxBytesPerSample + 2 * kApeRangeCoderSlack);
    ApeRangeEncoder coder(bytes.data());
    ResidualScale scale;
    for (const int32_t residual : residuals)
        encodeResidual(coder, scale, residual);
    bytes.resize(static_cast<size_t>(finishRangeEncoder(coder) - bytes.data()));
    return bytes;
}

void expectTheSameBack(const std::vector<int32_t> &residuals)
{
    std::vector<uint8_t> bytes = codedBytes(residuals);
    const size_t size = bytes.size();
    bytes.resize(size + kApeRangeCoderSlack, 0xFF);
    ApeRangeDecoder coder(bytes.data());
    ResidualScale scale;
    for (size_t i = 0; i < residuals.size(); ++i)
        ASSERT_EQ(decodeResidual(coder, scale), residuals[i]) << i;
    EXPECT_FALSE(coder.isCorrupt);
    EXPECT_LE(static_cast<size_t>(coder.end() - bytes.data()), size);
}

TEST(ApeRangeCoder, EndsAnEmptyFrameWithTheKnownBytes)
{
    EXPECT_EQ(codedBytes({}), (std::vector<uint8_t>{0, 1, 0, 0, 0}));
}

TEST(ApeRangeCoder, CodesTheResidualsOfTheWorkedExample)
{
    // Difference and middle of one block, each with a scale of its own.
    std::vector<uint8_t> bytes(100);
    ApeRangeEncoder coder(bytes.data());
    ResidualScale difference;
    ResidualScale middle;
    encodeResidual(coder, difference, -1002);
    encodeResidual(coder, middle, 499);
    bytes.resize(static_cast<size_t>(finishRangeEncoder(coder) - bytes.data()));
    EXPECT_EQ(bytes, (std::vector<uint8_t>{0x00, 0xD9, 0x63, 0xE4, 0x00, 0x00, 0x00}));
}

TEST(ApeRangeCoder, GivesBackResidualsOfEverySize)
{
    std::mt19937 random(3);
    for (const int bits : {0, 1, 4, 8, 16, 20, 24, 27}) {
        std::vector<int32_t> residuals(5000);
        for (int32_t &residual : residuals)
            residual = static_cast<int32_t>(random() & ((uint64_t{2} << bits) - 1)) - (1 << bits);
        expectTheSameBack(residuals);
    }
}

TEST(ApeRangeCoder, GivesBackSuddenPeaksByTheirEscape)
{
    std::vector<int32_t> residuals(20000);
    for (size_t i = 0; i < residuals.size(); i += 999)
        residuals[i] = i % 2 == 0 ? 16777216 : -16777215;
    expectTheSameBack(residuals);
}

TEST(ApeRangeCoder, CarriesThroughRowsOfFullBytes)
{
    // Residuals that keep the interval at its upper end, so that carries come late.
    std::mt19937 random(5);
    for (int i = 0; i < 300; ++i) {
        std::vector<int32_t> residuals(200);
        for (int32_t &residual : residuals)
            residual = random() % 16 == 0 ? 1000000 : 0;
        expectTheSameBack(residuals);
    }
}

} // namespace

} // namespace nurv::test
