// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/WaveSource.h"
#include "shntool/ReadAheadSource.h"

#include <gtest/gtest.h>

#include <numeric>
#include <stdexcept>

namespace nurv::test {

namespace {

/// Gives 1000 bytes in pieces of 7, and fails at the end if it is told to, in the middle of a piece.
class CountingSource final : public PieceSource {
public:
    explicit CountingSource(bool fails) : m_fails(fails) {}

protected:
    bool makePiece() override
    {
        if (m_next >= 1000)
            return false;
        std::vector<uint8_t> piece(7);
        std::iota(piece.begin(), piece.end(), static_cast<uint8_t>(m_next));
        give(std::span(piece).first(std::min<size_t>(7, 1000 - m_next)));
        m_next += 7;
        if (m_fails && m_next >= 1000)
            throw std::runtime_error("damaged");
        return true;
    }

private:
    bool m_fails;
    size_t m_next = 0;
};

void expectAllBytes(WaveSource &source)
{
    std::vector<uint8_t> bytes(300);
    size_t total = 0;
    for (size_t got = bytes.size(); got == bytes.size();) {
        got = source.read(bytes);
        for (size_t i = 0; i < got; ++i)
            ASSERT_EQ(bytes[i], static_cast<uint8_t>(total + i));
        total += got;
    }
    EXPECT_EQ(total, 1000U);
}

TEST(WaveSource, GivesAllBytesInPiecesOfAnySize)
{
    CountingSource source(false);
    expectAllBytes(source);
    EXPECT_TRUE(source.finish());
}

TEST(WaveSource, GivesWhatStandsInFrontOfAFault)
{
    CountingSource source(true);
    expectAllBytes(source);
    EXPECT_FALSE(source.finish());
    EXPECT_EQ(source.failure(), "damaged");
}

TEST(WaveSource, FindsAFaultBehindWhatWasRead)
{
    CountingSource source(true);
    EXPECT_EQ(source.skip(10), 10U);
    EXPECT_FALSE(source.failure());
    EXPECT_FALSE(source.finish());
}

TEST(ReadAheadSource, GivesTheSameAndTheSameFault)
{
    ReadAheadSource good(std::make_unique<CountingSource>(false));
    expectAllBytes(good);
    EXPECT_TRUE(good.finish());
    ReadAheadSource damaged(std::make_unique<CountingSource>(true));
    expectAllBytes(damaged);
    EXPECT_FALSE(damaged.finish());
    EXPECT_EQ(damaged.failure(), "damaged");
}

TEST(ReadAheadSource, EndsWhileItsThreadStillReads)
{
    ReadAheadSource source(std::make_unique<CountingSource>(false));
    std::vector<uint8_t> bytes(10);
    EXPECT_EQ(source.read(bytes), 10U);
}

} // namespace

} // namespace nurv::test
