// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/LengthValue.h"

#include "shntool/RunMessages.h"
#include "shntool/PcmWaveHeader.h"
#include "shntool/WaveInfo.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

uint64_t bytesOf(const std::string &text, const WaveHeader &header)
{
    RunMessages messages("shntool", "split");
    messages.isQuiet = true;
    return LengthValue::parse(text).inBytes(header, messages);
}

TEST(LengthValue, CountsInSectorsOfACompactDisc)
{
    const WaveHeader cd = pcmHeader(44100, 2, 16);
    EXPECT_EQ(bytesOf("123", cd), 123U);
    EXPECT_EQ(bytesOf("0:01", cd), 176'400U);
    EXPECT_EQ(bytesOf("1:02.03", cd), 62U * 176'400 + 3 * 2352);
    EXPECT_EQ(bytesOf("0:00.500", cd), 38U * 2352) << "37.5 sectors";
    EXPECT_EQ(bytesOf("0:00.005", cd), 2352U) << "never the beginning";
    EXPECT_EQ(bytesOf("0:00.000", cd), 0U);
}

TEST(LengthValue, KeepsToWholeFramesElsewhere)
{
    const WaveHeader studio = pcmHeader(96000, 6, 24);
    EXPECT_EQ(bytesOf("0:01", studio), 1'728'000U);
    EXPECT_EQ(bytesOf("0:00.333", studio), 333U * 1728);
    EXPECT_EQ(bytesOf("0:00.01", pcmHeader(8000, 1, 16)), 106U * 2) << "106 2/3 frames";
}

TEST(LengthValue, CountsSeventyFiveFramesASecondOfAnySound)
{
    EXPECT_EQ(bytesOf("0:01.47", pcmHeader(44100, 2, 8)), 88'200U + 47 * 588 * 2);
    EXPECT_EQ(bytesOf("0:00.74", pcmHeader(48000, 2, 16)), 74U * 640 * 4);
    EXPECT_EQ(bytesOf("2:00.25", pcmHeader(96000, 6, 24)), 120U * 1'728'000 + 576'000);
}

TEST(LengthValue, RefusesEverythingElse)
{
    for (const char *text :
         {"", "x", " 5", "5 ", "-5", "+5", "0:1", "0:001", ":05", "0:", "0:01.", "0:01.5", "0:01.5000", "0:60",
          "0:00.75", "1:02:03", "0x10", "99999999999999999999", "9999999999:00"})
        EXPECT_THROW(static_cast<void>(LengthValue::parse(text)), LengthValue::Fault) << text;
}

} // namespace

} // namespace nurv::test
