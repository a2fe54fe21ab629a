// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApePcm.h"

#include <gtest/gtest.h>

#include <vector>

namespace nurv::test {

namespace {

std::vector<int32_t> samplesOf(const std::vector<uint8_t> &pcm, unsigned bits)
{
    std::vector<int32_t> samples(pcm.size() * 8 / bits);
    readPcm(pcm, bits, samples);
    return samples;
}

std::vector<uint8_t> pcmBytes(const std::vector<int32_t> &samples, unsigned bits)
{
    std::vector<uint8_t> pcm(samples.size() * bits / 8);
    writePcm(samples, bits, pcm);
    return pcm;
}

TEST(ApePcm, KnowsTheSignsOfEachWidth)
{
    EXPECT_EQ(samplesOf({0x00, 0x80, 0xFF}, 8), (std::vector<int32_t>{-128, 0, 127}));
    EXPECT_EQ(samplesOf({0x00, 0x80, 0xFF, 0x7F, 0xFF, 0xFF}, 16), (std::vector<int32_t>{-32768, 32767, -1}));
    EXPECT_EQ(samplesOf({0x00, 0x00, 0x80, 0xFF, 0xFF, 0x7F, 0xFE, 0xFF, 0xFF}, 24),
              (std::vector<int32_t>{-8388608, 8388607, -2}));
}

TEST(ApePcm, DropsTheUpperBitsOfSamplesThatAreTooLarge)
{
    EXPECT_EQ(pcmBytes({-128, 127, 128, -129}, 8), (std::vector<uint8_t>{0x00, 0xFF, 0x00, 0xFF}));
    EXPECT_EQ(pcmBytes({40000, -32769}, 16), (std::vector<uint8_t>{0x40, 0x9C, 0xFF, 0x7F}));
    EXPECT_EQ(pcmBytes({8388608, -2}, 24), (std::vector<uint8_t>{0x00, 0x00, 0x80, 0xFE, 0xFF, 0xFF}));
}

} // namespace

} // namespace nurv::test
