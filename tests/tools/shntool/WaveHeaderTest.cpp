// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/RunMessages.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/WaveHeaderReader.h"
#include "shntool/WaveInfo.h"
#include "shntool/WaveSource.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

class BytesSource final : public PieceSource {
public:
    explicit BytesSource(std::span<const uint8_t> bytes) { give(bytes); }

protected:
    bool makePiece() override { return false; }
};

WaveHeaderFault read(std::span<const uint8_t> bytes, WaveHeader &header)
{
    RunMessages messages("shntool", "len");
    messages.isQuiet = true;
    BytesSource source(bytes);
    return readWaveHeader(source, "a.wav", messages, header);
}

std::vector<uint8_t> bytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

/// A plain header with chunks in front of the data.
std::vector<uint8_t> withChunks(std::string_view chunks)
{
    std::vector<uint8_t> bytes = makeWaveHeader(pcmHeader(44100, 2, 16), 400);
    const std::vector<uint8_t> more = bytesOf(chunks);
    bytes.insert(bytes.end() - 8, more.begin(), more.end());
    return bytes;
}

TEST(WaveHeader, ReadsWhatItWrites)
{
    for (const unsigned bits : {8U, 16U, 20U, 24U, 32U}) {
        for (const unsigned channels : {1U, 2U, 6U, 8U}) {
            WaveHeader header;
            ASSERT_EQ(read(makeWaveHeader(pcmHeader(96000, channels, bits), 4800), header), WaveHeaderFault::None);
            EXPECT_EQ(header.channels, channels);
            EXPECT_EQ(header.samplesPerSecond, 96000U);
            EXPECT_EQ(header.bitsPerSample, (bits + 7) / 8 * 8);
            EXPECT_EQ(header.dataBytes, 4800U);
            EXPECT_EQ(header.totalBytes(), header.bytes.size() + 4800);
            EXPECT_EQ(header.isExtensible(), channels > 2 || (bits != 8 && bits != 16));
        }
    }
}

TEST(WaveHeader, CountsInSixtyFourBits)
{
    const uint64_t dataBytes = uint64_t{5} << 32;
    const std::vector<uint8_t> bytes = makeWaveHeader(pcmHeader(44100, 2, 16), dataBytes);
    EXPECT_TRUE(startsWith(bytes, "RF64"));
    WaveHeader header;
    ASSERT_EQ(read(bytes, header), WaveHeaderFault::None);
    EXPECT_EQ(header.dataBytes, dataBytes);
    EXPECT_EQ(header.totalBytes(), bytes.size() + dataBytes);
}

TEST(WaveHeader, PassesOverOddChunksPaddedOrNot)
{
    using namespace std::string_view_literals;
    for (const std::string_view chunks : {"LIST\3\0\0\0abc\0"sv, "LIST\3\0\0\0abc"sv, "LIST\4\0\0\0abcd"sv}) {
        WaveHeader header;
        const std::vector<uint8_t> bytes = withChunks(chunks);
        ASSERT_EQ(read(bytes, header), WaveHeaderFault::None);
        EXPECT_EQ(header.dataBytes, 400U);
        EXPECT_EQ(header.bytes, bytes);
        EXPECT_FALSE(header.isCanonical());
    }
}

TEST(WaveHeader, RefusesEveryPrefixOfAHeader)
{
    const std::vector<uint8_t> bytes = makeWaveHeader(pcmHeader(44100, 6, 24), 400);
    for (size_t size = 0; size < bytes.size(); ++size) {
        WaveHeader header;
        EXPECT_NE(read(std::span(bytes).first(size), header), WaveHeaderFault::None) << size;
    }
}

TEST(WaveHeader, RefusesSizesThatAreNotThereWithoutMemoryForThem)
{
    using namespace std::string_view_literals;
    WaveHeader header;
    EXPECT_EQ(read(withChunks("LIST\xF0\xFF\xFF\xFF"
                              "abc"sv),
                   header),
              WaveHeaderFault::Malformed);
    EXPECT_LT(header.bytes.capacity(), size_t{1} << 20);
}

TEST(WaveHeader, RefusesSoundOfNoRateChannelsOrBits)
{
    for (const size_t at : {22, 24, 28, 32, 34}) {
        std::vector<uint8_t> bytes = makeWaveHeader(pcmHeader(44100, 1, 16), 400);
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), at == 24 || at == 28 ? 4 : 2, 0);
        WaveHeader header;
        EXPECT_EQ(read(bytes, header), WaveHeaderFault::Malformed) << at;
    }
}

TEST(WaveHeader, RefusesFloatingPointSound)
{
    WaveHeader header = pcmHeader(44100, 2, 32);
    std::vector<uint8_t> bytes = makeWaveHeader(header, 400);
    bytes[44] = 3; // the subformat
    EXPECT_EQ(read(bytes, header), WaveHeaderFault::Malformed);
}

TEST(WaveInfo, TellsWhatIsWrongWithAFile)
{
    WaveInfo info;
    info.header = pcmHeader(44100, 2, 16);
    info.header.bytes = makeWaveHeader(info.header, 1001);
    info.header.dataBytes = 1001;
    info.header.chunkBytes = 36 + 1001;
    EXPECT_EQ(info.padByte(), WaveInfo::PadByte::Missing);
    EXPECT_FALSE(info.isBlockAligned());
    info.header.chunkBytes += 1;
    EXPECT_EQ(info.padByte(), WaveInfo::PadByte::Present);
    EXPECT_EQ(info.extraBytes(), 0U);
    info.header.chunkBytes += 12;
    EXPECT_EQ(info.padByte(), WaveInfo::PadByte::Unknown);
    EXPECT_EQ(info.extraBytes(), 12U);
    info.header.dataBytes = 0xFFFFFFFF;
    EXPECT_TRUE(info.isInconsistent());
    EXPECT_EQ(info.bytesBehindData(), 0U);
}

} // namespace

} // namespace nurv::test
