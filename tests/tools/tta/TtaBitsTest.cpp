// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaBitReader.h"
#include "tta/TtaBitWriter.h"
#include "TtaSounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>

namespace nurv::test {

namespace {

std::vector<uint8_t> written(const std::vector<int32_t> &codes)
{
    std::vector<uint8_t> bytes;
    TtaBitWriter writer([&](std::span<const uint8_t> piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    TtaBitWriter::Position position = writer.begin();
    TtaRice rice;
    for (const int32_t code : codes)
        position.writeCode(writer, rice, code);
    writer.finish(position);
    return bytes;
}

/// The codes, and whether they end within the bytes, which come in pieces of that size.
std::pair<std::vector<int32_t>, bool> readBack(const std::vector<uint8_t> &bytes, size_t count, size_t pieceSize)
{
    size_t at = 0;
    TtaBitReader reader([&](std::span<uint8_t> piece) {
        const size_t size = std::min({piece.size(), pieceSize, bytes.size() - at});
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, piece.begin());
        at += size;
        return size;
    });
    TtaBitReader::Position position = reader.begin();
    TtaRice rice;
    std::vector<int32_t> codes;
    while (codes.size() < count)
        codes.push_back(position.readCode(reader, rice));
    return {codes, reader.isWithinFrame(position)};
}

TEST(TtaBits, WritesTheLowestBitFirst)
{
    // A zero bit, then 1, 2, 3 for 1, -1, 2: in 10 bits the first, then in 9.
    EXPECT_EQ(toQt(written({1, -1, 2})).toHex(), "0220c000");
}

TEST(TtaBits, WritesALargeValueAsOnesAndARest)
{
    // 2 * 1024 - 1 = 2^10 + 1023: one 1, a zero bit, ten bits of 1023.
    EXPECT_EQ(toQt(written({1024})).toHex(), "fd0f");
    // 2^10 + 1024: two ones, a zero bit, ten bits of 0.
    EXPECT_EQ(toQt(written({-1024})).toHex(), "0300");
}

TEST(TtaBits, ReadsEveryCodeBackInPiecesOfAnySize)
{
    std::mt19937 random(3);
    std::vector<int32_t> codes;
    for (int i = 0; i < 20000; ++i) {
        const int32_t sign = (random() & 1) != 0 ? -1 : 1;
        codes.push_back(sign * static_cast<int32_t>(random() >> (12 + random() % 20)));
    }
    const std::vector<uint8_t> bytes = written(codes);
    for (const size_t pieceSize : {size_t{1}, size_t{7}, size_t{8}, size_t{4096}, bytes.size()}) {
        const auto [read, isWithin] = readBack(bytes, codes.size(), pieceSize);
        EXPECT_TRUE(isWithin) << pieceSize;
        EXPECT_TRUE(read == codes) << pieceSize;
    }
}

TEST(TtaBits, KeepsValuesAtTheEndsOfTheirRange)
{
    // INT32_MIN folds to 0 as 32 bits wrap around, so it cannot come back.
    std::vector<int32_t> codes;
    for (int i = 0; i < 300; ++i)
        codes.insert(codes.end(), {INT32_MAX, -INT32_MAX});
    const std::vector<uint8_t> bytes = written(codes);
    const auto [read, isWithin] = readBack(bytes, codes.size(), bytes.size());
    EXPECT_TRUE(isWithin);
    EXPECT_EQ(read, codes);
}

TEST(TtaBits, KeepsAJumpAfterALongSilence)
{
    // Both parameters have gone down to 0: the jump takes 2^25 ones.
    std::vector<int32_t> codes(4000, 1);
    codes.push_back(1 << 24);
    codes.resize(codes.size() + 4000, 1);
    codes.push_back(-(1 << 24));
    const std::vector<uint8_t> bytes = written(codes);
    EXPECT_GT(bytes.size(), size_t{8} << 20);
    const auto [read, isWithin] = readBack(bytes, codes.size(), 65536);
    EXPECT_TRUE(isWithin);
    EXPECT_EQ(read, codes);
}

TEST(TtaBits, NoticesCodesThatRunPastTheEnd)
{
    const std::vector<int32_t> codes(100, 300);
    std::vector<uint8_t> bytes = written(codes);
    EXPECT_TRUE(readBack(bytes, codes.size(), 64).second);
    for (int cut = 1; cut <= 8; ++cut) {
        bytes.pop_back();
        bool isNoticed = false;
        try {
            isNoticed = !readBack(bytes, codes.size(), 64).second;
        } catch (const TtaFrameOverrun &) {
            isNoticed = true;
        }
        EXPECT_TRUE(isNoticed) << cut;
    }
    EXPECT_THROW(static_cast<void>(readBack({}, 1000, 64)), TtaFrameOverrun);
}

TEST(TtaBits, EndsAtOnesWithoutAnEnd)
{
    const std::vector<uint8_t> bytes(200000, 0xFF);
    EXPECT_THROW(static_cast<void>(readBack(bytes, 100, 4096)), TtaFrameOverrun);
}

} // namespace

} // namespace nurv::test
