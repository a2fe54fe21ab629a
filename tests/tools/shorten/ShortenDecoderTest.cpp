// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenDecoder.h"
#include "ReferenceStream.h"
#include "ShortenTestSupport.h"
#include "support/CorpusReplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace nurv;
using namespace nurv::shorten;
using namespace nurv::shorten::test;
using testing::HasSubstr;

namespace {

/// A stream without any samples: its header, VERBATIM "x", QUIT.
Bytes tinyStream(const ReferenceStream::Settings &settings = {})
{
    ReferenceStream stream(settings);
    stream.verbatim(Bytes{'x'});
    stream.quit();
    return stream.finish();
}

} // namespace

TEST(ShortenDecoder, ReadsEveryVersionAndPredictor)
{
    for (const unsigned version : {0U, 1U, 2U, 3U}) {
        for (const uint32_t maxOrder : {0U, 2U, 3U, 8U}) {
            for (const uint32_t meanCount : {0U, 1U, 4U, 9U}) {
                for (const unsigned bits : {8U, 16U}) {
                    const Wave wave{.frames = 9000, .channels = 1 + maxOrder % 3, .bits = bits};
                    SCOPED_TRACE(testing::PrintToString(wave) + ", version " + std::to_string(version) + ", order "
                                 + std::to_string(maxOrder) + ", means " + std::to_string(meanCount));
                    const Bytes stream = mixedStream(
                        wave, {.version = version, .maxOrder = maxOrder, .meanCount = meanCount}, meanCount != 1);
                    EXPECT_TRUE(decoded(stream) == wave.file());
                }
            }
        }
    }
}

TEST(ShortenDecoder, ReadsBlocksOfAnySize)
{
    for (const uint32_t blockSize : {3U, 17U, 1000U, 65535U}) {
        const Wave wave{.frames = 2345, .channels = 2};
        EXPECT_TRUE(decoded(mixedStream(wave, {.blockSize = blockSize, .maxOrder = 3})) == wave.file()) << blockSize;
    }
}

TEST(ShortenDecoder, KeepsMoreHistoryThanABlockHolds)
{
    const std::vector<int32_t> samples = {100, 90, 70, 60, 50, 20, -10, -70, -30, 5};
    ReferenceStream stream({.blockSize = 2, .maxOrder = 5});
    Bytes expected;
    for (size_t start = 0; start < samples.size(); start += 2) {
        stream.diff(start == 0 ? 0 : 3, 4, std::span(samples).subspan(start, 2));
        for (const int32_t sample : std::span(samples).subspan(start, 2))
            append(expected, littleEndian(static_cast<uint32_t>(sample), 2));
    }
    const std::vector<int32_t> predictor = {11, 7, -5, 3, 2};
    const std::vector<int32_t> last = {33, -44};
    stream.linear(predictor, 5, last);
    stream.linear({}, 5, last);
    stream.diff(2, 5, last);
    for (const int32_t sample : {33, -44, 33, -44, 33, -44})
        append(expected, littleEndian(static_cast<uint32_t>(sample), 2));
    stream.quit();
    EXPECT_EQ(decoded(stream.finish()), expected);
}

TEST(ShortenDecoder, UndoesShiftsThatChangeBetweenBlocks)
{
    const std::vector<int32_t> samples = {-4096, 256, 512, 1024, -32768, 0, 2048, 4096};
    for (const unsigned version : {1U, 2U}) {
        ReferenceStream stream({.version = version, .blockSize = 8});
        Bytes expected;
        for (unsigned i = 0; i < 12; ++i) {
            if (i % 2 == 0)
                stream.setShift(i % 9);
            if (i == 5)
                stream.zero();
            else
                stream.diff(i % 4, 6, samples);
            for (const int32_t sample : samples)
                append(expected, littleEndian(i == 5 ? 0 : static_cast<uint32_t>(sample), 2));
        }
        stream.quit();
        EXPECT_EQ(decoded(stream.finish()), expected);
    }
}

TEST(ShortenDecoder, WritesEveryTypeOfSamples)
{
    struct Case {
        uint32_t type;
        std::vector<int32_t> samples;
        Bytes expected;
    };
    const Case cases[] = {
        {1, {-128, -1, 0, 127}, {0x80, 0xFF, 0x00, 0x7F}},
        {2, {0, 1, 128, 255}, {0x00, 0x01, 0x80, 0xFF}},
        {3, {-32768, -2, 1, 32767}, {0x80, 0x00, 0xFF, 0xFE, 0x00, 0x01, 0x7F, 0xFF}},
        {4, {0, 1, 32768, 65535}, {0x00, 0x00, 0x00, 0x01, 0x80, 0x00, 0xFF, 0xFF}},
        {5, {-32768, -2, 1, 32767}, {0x00, 0x80, 0xFE, 0xFF, 0x01, 0x00, 0xFF, 0x7F}},
        {6, {0, 1, 32768, 65535}, {0x00, 0x00, 0x01, 0x00, 0x00, 0x80, 0xFF, 0xFF}},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.type);
        ReferenceStream stream({.fileType = each.type, .blockSize = 4});
        stream.diff(0, 10, each.samples);
        stream.diff(1, 10, each.samples);
        stream.quit();
        Bytes expected = each.expected;
        append(expected, each.expected);
        EXPECT_EQ(decoded(stream.finish()), expected);
    }
}

TEST(ShortenDecoder, ClipsWhatLeavesTheRangeOfItsType)
{
    ReferenceStream stream({.blockSize = 2});
    stream.diff(0, 14, std::vector<int32_t>{40000, -40000});
    stream.quit();
    EXPECT_EQ(decoded(stream.finish()), (Bytes{0xFF, 0x7F, 0x00, 0x80}));
    ReferenceStream narrow({.fileType = 2, .blockSize = 2});
    narrow.diff(0, 14, std::vector<int32_t>{300, -3});
    narrow.quit();
    EXPECT_EQ(decoded(narrow.finish()), (Bytes{0xFF, 0x00}));
}

TEST(ShortenDecoder, WritesTheSkippedBytesFirst)
{
    EXPECT_EQ(decoded(tinyStream({.skipped = {1, 2, 250}})), (Bytes{1, 2, 250, 'x'}));
}

TEST(ShortenDecoder, CopiesVerbatimPiecesOfAnyLengthAnywhere)
{
    const Bytes big(70000, 0x3C);
    const std::vector<int32_t> sample = {7};
    ReferenceStream stream({.blockSize = 1});
    stream.verbatim(big);
    stream.diff(0, 3, sample);
    stream.verbatim(Bytes{1, 2, 3});
    stream.diff(0, 3, sample);
    stream.verbatim({});
    stream.quit();
    Bytes expected = big;
    append(expected, Bytes{7, 0, 1, 2, 3, 7, 0});
    EXPECT_TRUE(decoded(stream.finish()) == expected);
}

TEST(ShortenDecoder, HandsTheWholeHeaderOverBeforeAnySample)
{
    const Bytes before = chunk("LIST", 3000);
    const Wave wave{.frames = 10000};
    const Bytes stream = encoded(wave.file(before, {}));
    // The samples are missing: the head needs none of them.
    const Bytes start(stream.begin(), stream.begin() + 5000);
    Bytes restored;
    EXPECT_THAT(complaint(start, &restored), HasSubstr("cut short"));
    const Bytes header = wave.header(before, wave.data().size(), 0);
    ASSERT_GE(restored.size(), header.size());
    EXPECT_TRUE(std::equal(header.begin(), header.end(), restored.begin()));
}

TEST(ShortenDecoder, PassesOverTagsInFront)
{
    Bytes tagged = {'I', 'D', '3', 3, 0, 0, 0, 0, 1, 2};
    tagged.resize(10 + 130, 0xAA);
    append(tagged, Bytes{'I', 'D', '3', 4, 0, 0x10, 0, 0, 0, 1, 0x55, '3', 'D', 'I', 4, 0, 0x10, 0, 0, 0, 1});
    append(tagged, tinyStream());
    EXPECT_EQ(decoded(tagged), Bytes{'x'});
}

TEST(ShortenDecoder, LeavesAloneWhatFollowsTheStream)
{
    Bytes stream = tinyStream();
    append(stream, Bytes(300, 0xFF));
    EXPECT_EQ(decoded(stream), Bytes{'x'});
    // Nor is padding needed.
    Bytes bare = tinyStream();
    while (complaint(Bytes(bare.begin(), bare.end() - 1)).empty())
        bare.pop_back();
    EXPECT_EQ(decoded(bare), Bytes{'x'});
    EXPECT_LT(bare.size(), tinyStream().size());
}

TEST(ShortenDecoder, SaysWhatItDoesNotRead)
{
    EXPECT_THAT(complaint({}), HasSubstr("this is no Shorten file"));
    EXPECT_THAT(complaint(Wave{}.file()), HasSubstr("this is no Shorten file"));
    Bytes newer = tinyStream();
    newer[4] = 4;
    EXPECT_THAT(complaint(newer), HasSubstr("version 4"));
    for (const uint32_t type : {0U, 7U, 8U, 9U, 10U, 11U, 4000000000U})
        EXPECT_THAT(complaint(tinyStream({.fileType = type})), HasSubstr("sample type " + std::to_string(type)));
}

TEST(ShortenDecoder, RefusesHeadersThatMakeNoSense)
{
    EXPECT_THAT(complaint(tinyStream({.channels = 0})), HasSubstr("0 channels"));
    EXPECT_THAT(complaint(tinyStream({.channels = 9})), HasSubstr("9 channels"));
    EXPECT_THAT(complaint(tinyStream({.blockSize = 0})), HasSubstr("block size is 0"));
    EXPECT_THAT(complaint(tinyStream({.blockSize = 65536})), HasSubstr("block size is 65536"));
    EXPECT_THAT(complaint(tinyStream({.maxOrder = 1025})), HasSubstr("order is 1025"));
    EXPECT_THAT(complaint(tinyStream({.meanCount = 32769})), HasSubstr("32769 means"));
    EXPECT_EQ(complaint(tinyStream({.channels = 8, .blockSize = 65535, .maxOrder = 1024, .meanCount = 32768})), "");
}

TEST(ShortenDecoder, RefusesCommandsThatMakeNoSense)
{
    const auto afterHeader = [](const auto &write) {
        ReferenceStream stream({.channels = 2, .blockSize = 2, .maxOrder = 2});
        write(stream);
        stream.quit();
        return complaint(stream.finish());
    };
    using Stream = ReferenceStream;
    const std::vector<int32_t> samples = {1, 2};
    EXPECT_THAT(afterHeader([](Stream &s) { s.uvar(10, 2); }), HasSubstr("command 10"));
    EXPECT_THAT(afterHeader([](Stream &s) { s.setShift(32); }), HasSubstr("32 bits"));
    EXPECT_THAT(afterHeader([](Stream &s) { s.setBlockSize(0); }), HasSubstr("block size is 0"));
    EXPECT_THAT(afterHeader([](Stream &s) { s.setBlockSize(70000); }), HasSubstr("block size is 70000"));
    EXPECT_THAT(afterHeader([&](Stream &s) { s.diff(1, 26, samples); }), HasSubstr("energy is 26"));
    EXPECT_THAT(afterHeader([&](Stream &s) {
                    s.linear(std::vector<int32_t>{1, 2, 3}, 3, samples);
                }),
                HasSubstr("order is 3"));
    EXPECT_THAT(afterHeader([&](Stream &s) { s.diff(1, 3, samples); }), HasSubstr("between the channels"));
    EXPECT_THAT(afterHeader([&](Stream &s) {
                    s.diff(1, 3, samples);
                    s.setBlockSize(1);
                }),
                HasSubstr("between the channels"));
    // A number beyond 32 bits.
    EXPECT_THAT(afterHeader([](Stream &s) {
                    s.uvar(5, 2);
                    s.uvar(33, 2);
                }),
                HasSubstr("too large"));
}

TEST(ShortenDecoder, SurvivesTheCorpus)
{
    EXPECT_TRUE(nurv::test::replayCorpus(QString::fromLocal8Bit(NURV_CORPUS)));
}

TEST(ShortenDecoder, EndsAtZerosWithoutEnd)
{
    Bytes stream = {'a', 'j', 'k', 'g', 2};
    stream.resize(1 << 20);
    EXPECT_THAT(complaint(stream), HasSubstr("cut short"));
}

TEST(ShortenDecoder, NoticesEveryCut)
{
    const Wave wave{.frames = 600};
    const Bytes stream = encoded(wave.file());
    const Bytes whole = wave.file();
    for (size_t size = 0; size + 4 < stream.size(); size += 3) {
        const Bytes cut(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size));
        Bytes restored;
        EXPECT_NE(complaint(cut, &restored), "") << size;
        ASSERT_LE(restored.size(), whole.size());
        EXPECT_TRUE(std::equal(restored.begin(), restored.end(), whole.begin())) << size;
    }
}

TEST(ShortenDecoder, SurvivesFlippedBits)
{
    std::mt19937 random(7);
    const Bytes plain = encoded(Wave{.frames = 3000}.file());
    const Bytes linear = mixedStream({.frames = 3000}, {.maxOrder = 3});
    for (int i = 0; i < 600; ++i) {
        Bytes damaged = i % 2 == 0 ? plain : linear;
        for (int flips = 0; flips < 1 + i % 3; ++flips)
            damaged[random() % damaged.size()] ^= static_cast<uint8_t>(1U << random() % 8);
        Bytes restored;
        (void)complaint(damaged, &restored);
        // A run of zeros costs a bit for a block: there is a bound to what can come out.
        EXPECT_LT(restored.size(), size_t{64} << 20);
    }
}
