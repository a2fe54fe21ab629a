// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaHeader.h"

#include "support/ToolError.h"
#include "tta/TtaCrc.h"
#include "TtaSounds.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <cstring>

namespace nurv::test {

namespace {

using Bytes = std::array<uint8_t, TtaHeader::kByteCount>;

/// Three 16-bit stereo samples at 44100 Hz, as another encoder writes them.
Bytes knownHeader()
{
    const QByteArray known = QByteArray::fromHex("5454413101000200100044ac000003000000c5d63b5d");
    Bytes bytes;
    std::memcpy(bytes.data(), known.data(), bytes.size());
    return bytes;
}

Bytes withCrc(Bytes bytes)
{
    const uint32_t crc = ttaCrc(std::span(bytes).first(18));
    std::memcpy(&bytes[18], &crc, sizeof crc);
    return bytes;
}

std::string refusalOf(const Bytes &bytes, ToolError::Kind kind)
{
    try {
        [[maybe_unused]] const TtaHeader header = TtaHeader::fromBytes(bytes);
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), kind) << error.what();
        return error.what();
    }
    return "accepted";
}

TEST(TtaHeader, ReadsAndWritesAHeaderOfAnotherEncoder)
{
    const TtaHeader header = TtaHeader::fromBytes(knownHeader());
    EXPECT_EQ(header.channels, 2);
    EXPECT_EQ(header.bitsPerSample, 16);
    EXPECT_EQ(header.sampleRateHz, 44100U);
    EXPECT_EQ(header.sampleCount, 3U);
    EXPECT_EQ(header.toBytes(), knownHeader());
}

TEST(TtaHeader, CountsFramesOfALittleOverASecond)
{
    EXPECT_EQ(shapeOf(1, 16, 0, 44100).frameLength(), 46080U);
    EXPECT_EQ(shapeOf(1, 16, 0, 48000).frameLength(), 50155U);
    EXPECT_EQ(shapeOf(1, 16, 0, 1).frameLength(), 1U);
    EXPECT_EQ(shapeOf(1, 16, 0, TtaHeader::kMaxSampleRateHz).frameLength(), 1044897U);
    EXPECT_EQ(shapeOf(1, 16, 0).frameCount(), 0U);
    EXPECT_EQ(shapeOf(1, 16, 1).frameCount(), 1U);
    EXPECT_EQ(shapeOf(1, 16, 46080).frameCount(), 1U);
    EXPECT_EQ(shapeOf(1, 16, 46081).frameCount(), 2U);
    EXPECT_EQ(shapeOf(1, 16, 46081).samplesInFrame(0), 46080U);
    EXPECT_EQ(shapeOf(1, 16, 46081).samplesInFrame(1), 1U);
    EXPECT_EQ(shapeOf(1, 16, UINT32_MAX).frameCount(), 93207U);
}

TEST(TtaHeader, RefusesWhatItCannotHoldAndSaysWhy)
{
    const auto changed = [](size_t at, uint8_t value) {
        Bytes bytes = knownHeader();
        bytes[at] = value;
        return withCrc(bytes);
    };
    const auto unsupported = ToolError::Kind::UnsupportedFormat;
    EXPECT_EQ(refusalOf(changed(4, 2), unsupported), "the file is encrypted with a password, which is not supported");
    EXPECT_EQ(refusalOf(changed(4, 3), unsupported), "audio format 3 is not supported, only integer PCM");
    EXPECT_EQ(refusalOf(changed(6, 0), unsupported), "0 channels are not supported, only 1 to 6");
    EXPECT_EQ(refusalOf(changed(6, 7), unsupported), "7 channels are not supported, only 1 to 6");
    EXPECT_EQ(refusalOf(changed(8, 32), unsupported), "32 bits per sample are not supported, only 8, 16 and 24");
    EXPECT_EQ(refusalOf(changed(8, 0), unsupported), "0 bits per sample are not supported, only 8, 16 and 24");
    EXPECT_EQ(refusalOf(changed(13, 0xFF), unsupported), "a sample rate of 4278234180 Hz is not supported");
    EXPECT_EQ(refusalOf(changed(0, 'X'), ToolError::Kind::InvalidInput), "not a TTA1 file");
    EXPECT_EQ(refusalOf(changed(3, '2'), ToolError::Kind::InvalidInput), "not a TTA1 file");
}

TEST(TtaHeader, RefusesASampleRateOfZeroAndAnEndlessSeekTable)
{
    EXPECT_THROW(shapeOf(2, 16, 100, 0).check(), ToolError);
    EXPECT_NO_THROW(shapeOf(2, 16, TtaHeader::kMaxFrames, 1).check());
    EXPECT_THROW(shapeOf(2, 16, TtaHeader::kMaxFrames + 1, 1).check(), ToolError);
    EXPECT_NO_THROW(shapeOf(2, 16, UINT32_MAX, 1000).check());
}

TEST(TtaHeader, FindsADamagedHeaderBeforeItBelievesIt)
{
    for (size_t at = 4; at < TtaHeader::kByteCount; ++at) {
        Bytes bytes = knownHeader();
        bytes[at] ^= 0x10;
        EXPECT_EQ(refusalOf(bytes, ToolError::Kind::Damaged), "the header is damaged: its CRC does not match") << at;
    }
}

} // namespace

} // namespace nurv::test
