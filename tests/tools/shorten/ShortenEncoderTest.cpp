// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenCompression.h"
#include "ShortenTestSupport.h"
#include "support/InputFile.h"
#include "support/ToolError.h"
#include "support/WaveReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace nurv;
using namespace nurv::shorten;
using namespace nurv::shorten::test;

namespace {

/// Six samples, encoded by hand: a VERBATIM of 44 bytes, BLOCKSIZE 3, two DIFF0, QUIT.
constexpr const char *kSmallStream = "616a6b6702fbb17009f9255952a4d1a8d30804020157a0d5a8b66b6dd2411080"
                                     "40201018040a0144d64020110d8c0a0104804420164b0dd2c30c8040200bbc6c"
                                     "0c81fffa00046c0c71fffe007240000000";
constexpr const char *kSmallTable =
    "5345454b0100000051000000"
    "00000000510000000500000010003c0013000c6cbc0b0000"
    "0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
    "000000000000000000000000"
    "6800000053484e414d50534b";

Bytes smallWave()
{
    Bytes bytes = Wave{.channels = 2}.header({}, 12, 0);
    for (const int sample : {100, -100, 32767, -32768, 0, 7})
        append(bytes, littleEndian(static_cast<uint32_t>(sample), 2));
    return bytes;
}

void expectRestored(const Bytes &file, uint32_t blockSize = kDefaultBlockSize, uint32_t meanCount = kDefaultMeanCount)
{
    const Bytes stream = encoded(file, blockSize, meanCount);
    EXPECT_EQ((stream.size() - kStreamOffset) % 4, 0U);
    // Not EXPECT_EQ: it would print both.
    EXPECT_TRUE(decoded(stream) == file);
}

std::string refusal(const Bytes &wave)
{
    InputFile input(wave);
    const WaveReader reader(input);
    try {
        (void)streamHeaderFor(reader.format(), "song.wav");
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::UnsupportedFormat);
        return error.what();
    }
    return {};
}

} // namespace

TEST(ShortenEncoder, WritesTheStreamThatWasWorkedOutByHand)
{
    EXPECT_EQ(encoded(smallWave()), fromHex(kSmallStream));
    EXPECT_EQ(decoded(fromHex(kSmallStream)), smallWave());
}

TEST(ShortenEncoder, AppendsTheSeekTableThatWasWorkedOutByHand)
{
    Bytes expected = fromHex(kSmallStream);
    append(expected, fromHex(kSmallTable));
    EXPECT_EQ(encoded(smallWave(), kDefaultBlockSize, kDefaultMeanCount, true), expected);
}

TEST(ShortenEncoder, StartsEveryCompactDiscStreamAlike)
{
    const Bytes start = fromHex("616a6b6702fbb17009f925");
    const Bytes stream = encoded(Wave{.sound = Sound::Noise, .frames = 5000}.file());
    EXPECT_TRUE(std::equal(start.begin(), start.end(), stream.begin()));
}

TEST(ShortenEncoder, RestoresEverySoundByteForByte)
{
    for (const Sound sound : kAllSounds) {
        for (const unsigned bits : {8U, 16U}) {
            for (const unsigned channels : {1U, 2U}) {
                const Wave wave{.sound = sound, .frames = 7001, .channels = channels, .bits = bits};
                SCOPED_TRACE(testing::PrintToString(wave));
                expectRestored(wave.file());
            }
        }
    }
}

TEST(ShortenEncoder, RestoresEveryNumberOfChannels)
{
    for (unsigned channels = 1; channels <= 8; ++channels) {
        for (const unsigned bits : {8U, 16U}) {
            const Wave wave{.sound = Sound::Shifts, .frames = 3000, .channels = channels, .bits = bits};
            SCOPED_TRACE(testing::PrintToString(wave));
            expectRestored(wave.file());
        }
    }
}

TEST(ShortenEncoder, RestoresLengthsAroundItsBordersOfBlocks)
{
    for (const size_t frames : {0U, 1U, 2U, 3U, 4U, 255U, 256U, 257U, 511U, 512U, 513U, 25599U, 25600U, 25601U}) {
        for (const Sound sound : {Sound::Music, Sound::Silence}) {
            const Wave wave{.sound = sound, .frames = frames};
            SCOPED_TRACE(testing::PrintToString(wave));
            expectRestored(wave.file());
        }
    }
}

TEST(ShortenEncoder, RestoresWithOtherBlockSizesAndMeans)
{
    for (const uint32_t blockSize : {1U, 2U, 37U, 1024U, 65535U}) {
        for (const uint32_t meanCount : {0U, 1U, 3U, 4U, 32U}) {
            for (const unsigned bits : {8U, 16U}) {
                SCOPED_TRACE(std::to_string(blockSize) + " frames, " + std::to_string(meanCount) + " means");
                expectRestored(Wave{.sound = Sound::Shifts, .frames = 6001, .bits = bits}.file(), blockSize, meanCount);
                expectRestored(Wave{.sound = Sound::Bursts, .frames = 6001, .bits = bits}.file(), blockSize, meanCount);
            }
        }
    }
}

TEST(ShortenEncoder, RestoresTheWorstBlockThatSamplesCanMake)
{
    expectRestored(Wave{.sound = Sound::Noise, .frames = 70000, .channels = 1}.file(), 65535);
    expectRestored(Wave{.sound = Sound::Alternation, .frames = 140000, .channels = 1}.file(), 65535);
}

TEST(ShortenEncoder, RestoresASingleClickInSilence)
{
    // Its code is longer than what the writer handles at once.
    Bytes data(2 * 65535);
    data[60001] = 0x7F;
    Bytes file = Wave{.channels = 1}.header({}, data.size(), 0);
    append(file, data);
    expectRestored(file, 65535);
    expectRestored(file);
}

TEST(ShortenEncoder, RestoresChunksAroundTheSamples)
{
    const Wave mono8{.sound = Sound::Music, .frames = 777, .channels = 1, .bits = 8};
    const Wave stereo{.sound = Sound::Music, .frames = 777};
    for (const size_t size : {0U, 1U, 2U, 255U, 256U, 257U, 5000U}) {
        for (const int pad : {0, 0x55}) {
            const Bytes extra = chunk("LIST", size, pad);
            expectRestored(stereo.file(extra, {}));
            expectRestored(stereo.file({}, extra));
            expectRestored(stereo.file(extra, extra));
        }
    }
    // 777 bytes of data take a pad byte, which many a program forgets.
    for (const Bytes &pad : {Bytes{}, Bytes{0}, Bytes{0x42}}) {
        Bytes after = pad;
        append(after, chunk("id3 ", 33, -1));
        expectRestored(mono8.file({}, pad));
        expectRestored(mono8.file({}, after));
    }
}

TEST(ShortenEncoder, RestoresPartialFramesAndJunk)
{
    const Wave wave{.frames = 500};
    for (size_t missing = 1; missing < 4; ++missing) {
        Bytes cut = wave.file();
        cut.resize(cut.size() - missing);
        expectRestored(cut);
        Bytes data = wave.data();
        data.resize(data.size() - missing);
        Bytes declared = wave.header({}, data.size(), 0);
        append(declared, data);
        expectRestored(declared);
    }
    expectRestored(wave.file({}, Bytes(100000, 0xA5)));
}

TEST(ShortenEncoder, RestoresWhateverSizeIsDeclared)
{
    const Wave wave{.frames = 3000};
    for (const size_t declared :
         {size_t{0}, size_t{1}, size_t{4001}, size_t{12001}, size_t{20000}, size_t{0x7FFFF000}, size_t{0xFFFFFFFF}}) {
        SCOPED_TRACE(declared);
        Bytes file = wave.header({}, declared, 0);
        append(file, wave.data());
        append(file, chunk("LIST", 99, 3));
        expectRestored(file);
    }
}

TEST(ShortenEncoder, CompressesWhatAPipeCouldNotCount)
{
    const Wave wave{.frames = 20000};
    for (const size_t declared : {size_t{0}, size_t{0xFFFFFFFF}}) {
        Bytes file = wave.header({}, declared, 0);
        append(file, wave.data());
        EXPECT_LT(encoded(file).size(), encoded(wave.file()).size() + 16);
    }
}

TEST(ShortenEncoder, TakesFewBytesForWhatNeedsFew)
{
    // Five bits for a block of zeros, and no less than two for any other sample.
    const size_t head = encoded(Wave{.frames = 0}.file()).size();
    EXPECT_LE(encoded(Wave{.sound = Sound::Silence, .frames = 256000}.file()).size(), head + 2000 * 5 / 8 + 8);
    const Wave silence8{.sound = Sound::Silence, .frames = 256000, .channels = 1, .bits = 8};
    EXPECT_LE(encoded(silence8.file()).size(), head + 1000 * (256 * 2 + 7) / 8 + 8);
    // Noise cannot be compressed: 16 bits for a sample, the ones after the runs, little else.
    const Wave noise{.sound = Sound::Noise, .frames = 25600};
    EXPECT_LE(encoded(noise.file()).size(), noise.file().size() * 17 / 16);
    // Samples that are multiples of 16 take 4 bits less.
    Wave tone{.sound = Sound::Noise, .frames = 25600, .channels = 1};
    Bytes data = tone.data();
    for (size_t i = 0; i < data.size(); i += 2)
        data[i] &= 0xF0;
    Bytes file = tone.header({}, data.size(), 0);
    append(file, data);
    EXPECT_LE(encoded(file).size() + 25600 * 4 / 8, encoded(tone.file()).size() + 100);
}

TEST(ShortenEncoder, RefusesWhatShortenCannotHold)
{
    EXPECT_EQ(refusal(Wave{.bits = 16}.file()), "");
    EXPECT_THAT(refusal(Wave{.bits = 24}.header({}, 0, 0)), testing::HasSubstr("8 or 16 bits, not of 24"));
    EXPECT_THAT(refusal(Wave{.bits = 32}.header({}, 0, 0)), testing::HasSubstr("8 or 16 bits, not of 32"));
    EXPECT_THAT(refusal(Wave{.channels = 9}.header({}, 0, 0)), testing::HasSubstr("1 to 8 channels, not 9"));
    Bytes floating = Wave{.bits = 16}.header({}, 0, 0);
    floating[20] = 3;
    EXPECT_THAT(refusal(floating), testing::HasSubstr("not WAV format 3"));
    EXPECT_THAT(refusal(floating), testing::StartsWith("song.wav: "));
    Bytes extensible = Wave{.bits = 16}.header({}, 0, 0);
    extensible[20] = 0xFE;
    extensible[21] = 0xFF;
    EXPECT_THAT(refusal(extensible), testing::HasSubstr("not WAV format 65534")) << "it names no subformat";
}
