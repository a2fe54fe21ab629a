// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ApeSounds.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

class ApeInstructionSets : public ::testing::TestWithParam<ApeInstructionSet> {
protected:
    void SetUp() override
    {
        if (!isAvailable(GetParam()))
            GTEST_SKIP() << "this processor lacks the instructions";
    }
};

TEST_P(ApeInstructionSets, WriteAndReadTheSameBytes)
{
    constexpr size_t kBlocks = 6000; // longer than any filter and its window
    for (const unsigned bits : {8U, 16U, 24U}) {
        for (const Sound sound : {Sound::Music, Sound::Noise, Sound::Alternation, Sound::Bursts}) {
            const QByteArray wav = wavOf(sound, {.bits = bits}, kBlocks);
            for (const ApeLevel level : kApeLevels) {
                SCOPED_TRACE(std::to_string(bits) + " bits, sound " + std::to_string(static_cast<int>(sound)) + ", "
                             + std::to_string(static_cast<int>(level)));
                const QByteArray plain = encoded(wav, level, ApeInstructionSet::Plain);
                EXPECT_TRUE(isSame(encoded(wav, level, GetParam()), plain));
                EXPECT_TRUE(isSame(decoded(plain, GetParam()), wav));
            }
        }
    }
}

TEST_P(ApeInstructionSets, WriteAndReadTheSameBytesOfOneChannel)
{
    const QByteArray wav = wavOf(Sound::Music, {.channels = 1}, 6000);
    for (const ApeLevel level : kApeLevels) {
        const QByteArray plain = encoded(wav, level, ApeInstructionSet::Plain);
        EXPECT_TRUE(isSame(encoded(wav, level, GetParam()), plain));
        EXPECT_TRUE(isSame(decoded(plain, GetParam()), wav));
    }
}

INSTANTIATE_TEST_SUITE_P(All, ApeInstructionSets,
                         ::testing::Values(ApeInstructionSet::Plain, ApeInstructionSet::Sse2, ApeInstructionSet::Avx2));

} // namespace

} // namespace nurv::test
