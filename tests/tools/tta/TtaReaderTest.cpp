// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaReader.h"

#include "support/InputFile.h"
#include "support/ToolError.h"
#include "tta/TtaCrc.h"
#include "TtaSounds.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

constexpr size_t kHeaderBytes = TtaHeader::kByteCount;

/// Four frames of 8 kHz, so that files are small.
TtaHeader fourFrames()
{
    return shapeOf(2, 16, 3 * 8359 + 100, 8000);
}

std::vector<uint8_t> fourFrameFile()
{
    return ttaOf(makePcm(Sound::Music, fourFrames()), fourFrames());
}

size_t frameStart(const std::vector<uint8_t> &file, size_t frame)
{
    size_t start = kHeaderBytes + 4 * fourFrames().frameCount() + 4;
    for (size_t i = 0; i < frame; ++i) {
        const size_t at = kHeaderBytes + 4 * i;
        start += file[at] | size_t{file[at + 1]} << 8 | size_t{file[at + 2]} << 16;
    }
    return start;
}

std::vector<TtaFrameState> statesOf(const std::vector<uint8_t> &file)
{
    InputFile input(file);
    TtaReader reader(input);
    std::vector<TtaFrameState> states;
    for (uint64_t frame = 0; frame < reader.header().frameCount(); ++frame)
        states.push_back(reader.readFrame());
    return states;
}

/// A file of one frame of these bytes, all checksums right.
std::vector<uint8_t> withOneFrame(const TtaHeader &shape, const std::vector<uint8_t> &frame)
{
    const auto append = [](std::vector<uint8_t> &bytes, uint32_t number) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<uint8_t>(number >> shift));
    };
    const auto header = shape.toBytes();
    std::vector<uint8_t> file(header.begin(), header.end());
    append(file, static_cast<uint32_t>(frame.size()) + 4);
    append(file, ttaCrc(std::span(file).subspan(kHeaderBytes)));
    file.insert(file.end(), frame.begin(), frame.end());
    append(file, ttaCrc(frame));
    return file;
}

std::string failureOf(const std::vector<uint8_t> &file)
{
    InputFile input(file);
    try {
        const TtaReader reader(input);
    } catch (const ToolError &error) {
        return error.what();
    }
    return "opened";
}

TEST(TtaReader, ReadsEveryFrame)
{
    const std::vector<uint8_t> pcm = makePcm(Sound::Music, fourFrames());
    const std::vector<uint8_t> file = ttaOf(pcm, fourFrames());
    InputFile input(file);
    TtaReader reader(input);
    std::vector<uint8_t> read;
    for (uint64_t frame = 0; frame < reader.header().frameCount(); ++frame) {
        ASSERT_EQ(reader.readFrame(), TtaFrameState::Good);
        read.insert(read.end(), reader.pcm().begin(), reader.pcm().end());
    }
    EXPECT_TRUE(read == pcm);
    EXPECT_EQ(input.position(), file.size());
}

TEST(TtaReader, GoesOnBehindADamagedFrame)
{
    std::vector<uint8_t> file = fourFrameFile();
    file[frameStart(file, 1) + 50] ^= 0x40;
    using enum TtaFrameState;
    EXPECT_EQ(statesOf(file), (std::vector{Good, CrcMismatch, Good, Good}));
}

TEST(TtaReader, NoticesEveryFlippedBitOfAFrame)
{
    const TtaHeader shape = shapeOf(1, 8, 40);
    const std::vector<uint8_t> file = ttaOf(makePcm(Sound::Music, shape), shape);
    for (size_t at = kHeaderBytes + 8; at < file.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::vector<uint8_t> damaged = file;
            damaged[at] ^= static_cast<uint8_t>(1 << bit);
            EXPECT_EQ(statesOf(damaged), std::vector{TtaFrameState::CrcMismatch}) << at;
        }
    }
}

TEST(TtaReader, TellsATruncatedFrameAndThoseBehindIt)
{
    std::vector<uint8_t> file = fourFrameFile();
    file.resize(frameStart(file, 2) + 100);
    using enum TtaFrameState;
    EXPECT_EQ(statesOf(file), (std::vector{Good, Good, Truncated, Truncated}));
    // One byte of the last CRC.
    file = fourFrameFile();
    file.pop_back();
    EXPECT_EQ(statesOf(file), (std::vector{Good, Good, Good, Truncated}));
}

TEST(TtaReader, TellsAFrameThatHoldsTooFewSamples)
{
    // The frames of a shorter file under the header of a longer one.
    const TtaHeader shorter = shapeOf(1, 16, 1000);
    std::vector<uint8_t> file = ttaOf(makePcm(Sound::Music, shorter), shorter);
    const auto header = shapeOf(1, 16, 2000).toBytes();
    std::copy(header.begin(), header.end(), file.begin());
    EXPECT_EQ(statesOf(file), std::vector{TtaFrameState::Overrun});
}

TEST(TtaReader, TellsAFrameThatHoldsMoreSamples)
{
    for (const int bits : {8, 16, 24}) {
        for (const int missing : {1, 7, 999}) {
            const TtaHeader longer = shapeOf(1, bits, 1000);
            std::vector<uint8_t> file = ttaOf(makePcm(Sound::Music, longer), longer);
            const auto header = shapeOf(1, bits, 1000 - missing).toBytes();
            std::copy(header.begin(), header.end(), file.begin());
            EXPECT_EQ(statesOf(file), std::vector{TtaFrameState::HoldsMore}) << bits << ' ' << missing;
        }
    }
}

TEST(TtaReader, AllowsForPaddingInAFrame)
{
    const TtaHeader shape = shapeOf(2, 16, 1000);
    const std::vector<uint8_t> file = ttaOf(makePcm(Sound::Music, shape), shape);
    for (const size_t zeros : {1, 3, 4}) {
        std::vector<uint8_t> frame(file.begin() + kHeaderBytes + 8, file.end() - 4);
        frame.insert(frame.end(), zeros, 0);
        EXPECT_EQ(statesOf(withOneFrame(shape, frame)),
                  std::vector{zeros < 4 ? TtaFrameState::Good : TtaFrameState::HoldsMore})
            << zeros;
    }
}

TEST(TtaReader, DescribesWhatItFoundWhere)
{
    std::vector<uint8_t> file = fourFrameFile();
    file[frameStart(file, 1) + 50] ^= 0x40;
    file.pop_back();
    InputFile input(file);
    TtaReader reader(input);
    std::vector<std::string> texts;
    for (uint64_t frame = 0; frame < reader.header().frameCount(); ++frame)
        texts.push_back(reader.describe(reader.readFrame()));
    EXPECT_EQ(texts[0], "frame 1 of 4 (at 0.00 s) is good");
    EXPECT_EQ(texts[1], "frame 2 of 4 (at 1.04 s) is damaged: its CRC does not match");
    EXPECT_EQ(texts[3], "frame 4 of 4 (at 3.13 s) is missing: the file is truncated");
    EXPECT_EQ(reader.describe(TtaFrameState::HoldsMore),
              "frame 4 of 4 (at 3.13 s) is damaged: it holds more samples than the header counts");
    EXPECT_EQ(reader.describe(TtaFrameState::Overrun), "frame 4 of 4 (at 3.13 s) is damaged: it holds too few samples");
}

TEST(TtaReader, RefusesADamagedHeaderAndADamagedSeekTable)
{
    std::vector<uint8_t> file = fourFrameFile();
    file[6] ^= 1;
    EXPECT_EQ(failureOf(file), "memory: the header is damaged: its CRC does not match");
    for (size_t at = kHeaderBytes; at < kHeaderBytes + 20; ++at) {
        file = fourFrameFile();
        file[at] ^= 0x04;
        EXPECT_EQ(failureOf(file), "memory: the seek table is damaged: its CRC does not match") << at;
    }
}

TEST(TtaReader, RefusesAFileThatEndsBeforeItsFrames)
{
    const std::vector<uint8_t> file = fourFrameFile();
    const auto firstBytes = [&](size_t count) {
        return failureOf({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(count)});
    };
    for (size_t count = 4; count < kHeaderBytes; ++count)
        EXPECT_EQ(firstBytes(count), "memory: the file is truncated within its header") << count;
    for (size_t count = kHeaderBytes; count < frameStart(file, 0); ++count)
        EXPECT_EQ(firstBytes(count), "memory: the file is truncated within its seek table") << count;
    EXPECT_EQ(firstBytes(3), "memory: not a TTA1 file");
    EXPECT_EQ(firstBytes(0), "memory: not a TTA1 file");
}

TEST(TtaReader, PassesOverTagsInFrontAndBehind)
{
    // Two tags of 300 bytes, the second with a footer.
    std::vector<uint8_t> tag(310, 0xAA);
    const uint8_t head[] = {'I', 'D', '3', 4, 0, 0, 0, 0, 2, 44};
    std::copy(std::begin(head), std::end(head), tag.begin());
    std::vector<uint8_t> tagged = tag;
    tag[5] = 0x10;
    tag.resize(320, 0xAA);
    tagged.insert(tagged.end(), tag.begin(), tag.end());
    const std::vector<uint8_t> file = fourFrameFile();
    tagged.insert(tagged.end(), file.begin(), file.end());
    tagged.insert(tagged.end(), 128, 'T');
    EXPECT_EQ(statesOf(tagged), std::vector(4, TtaFrameState::Good));
    InputFile input(tagged);
    EXPECT_TRUE(looksLikeTta(input));
}

TEST(TtaReader, OpensAFileWithoutSamples)
{
    const std::vector<uint8_t> file = ttaOf({}, shapeOf(2, 16, 0));
    ASSERT_EQ(file.size(), 26U);
    EXPECT_EQ(statesOf(file), std::vector<TtaFrameState>{});
}

} // namespace

} // namespace nurv::test
