// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenOptions.h"
#include "support/ToolError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace nurv;
using namespace nurv::shorten;
using testing::HasSubstr;

namespace {

ShortenOptions parse(const std::vector<std::string> &arguments)
{
    return ShortenOptions::parse(arguments);
}

std::string complaint(const std::vector<std::string> &arguments)
{
    try {
        (void)parse(arguments);
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::BadArguments);
        return error.what();
    }
    return {};
}

} // namespace

TEST(ShortenOptions, CompressesFromStandardInputToStandardOutputByDefault)
{
    const ShortenOptions options = parse({});
    EXPECT_FALSE(options.isDecoding);
    EXPECT_TRUE(options.wantsSeekTable);
    EXPECT_EQ(options.blockSize, 256U);
    EXPECT_EQ(options.meanCount, 4U);
    EXPECT_EQ(options.input, "-");
    EXPECT_EQ(options.output, "-");
}

TEST(ShortenOptions, TakesTheTwoCallsOfShntool)
{
    const ShortenOptions encoding = parse({"-", "out.shn"});
    EXPECT_FALSE(encoding.isDecoding);
    EXPECT_EQ(encoding.input, "-");
    EXPECT_EQ(encoding.output, "out.shn");
    const ShortenOptions decoding = parse({"-x", "in.shn", "-"});
    EXPECT_TRUE(decoding.isDecoding);
    EXPECT_EQ(decoding.input, "in.shn");
    EXPECT_EQ(decoding.output, "-");
}

TEST(ShortenOptions, TakesValuesJoinedOrApartAndOptionsAnywhere)
{
    const ShortenOptions options = parse({"-b512", "in.wav", "-m", "0", "-v2", "-p0", "-t", "wav", "out.shn", "-x"});
    EXPECT_TRUE(options.isDecoding);
    EXPECT_FALSE(options.wantsSeekTable);
    EXPECT_EQ(options.blockSize, 512U);
    EXPECT_EQ(options.meanCount, 0U);
    EXPECT_EQ(options.input, "in.wav");
    EXPECT_EQ(options.output, "out.shn");
    EXPECT_EQ(parse({"-xb7"}).blockSize, 7U);
    EXPECT_TRUE(parse({"-v", "3"}).wantsSeekTable);
}

TEST(ShortenOptions, TakesNamesWithDashesAfterTwoDashes)
{
    const ShortenOptions options = parse({"--", "-x", "-b"});
    EXPECT_FALSE(options.isDecoding);
    EXPECT_EQ(options.input, "-x");
    EXPECT_EQ(options.output, "-b");
}

TEST(ShortenOptions, NamesWhatIsWrong)
{
    EXPECT_THAT(complaint({"-z"}), HasSubstr("no option '-z'"));
    EXPECT_THAT(complaint({"--fast"}), HasSubstr("no option '--fast'"));
    EXPECT_THAT(complaint({"a", "b", "c"}), HasSubstr("'c' is too much"));
    EXPECT_THAT(complaint({"-b"}), HasSubstr("-b lacks its value"));
    EXPECT_THAT(complaint({"-v", "1"}), HasSubstr("-v takes a number from 2 to 3, not '1'"));
    EXPECT_THAT(complaint({"-p8"}), HasSubstr("-p 8: linear prediction"));
    EXPECT_THAT(complaint({"-t", "aiff"}), HasSubstr("-t aiff"));
    for (const char *value : {"0", "65536", "-1", "", " 3", "3k", "99999999999"})
        EXPECT_THAT(complaint({"-b", value}), HasSubstr("-b takes a number from 1 to 65535")) << value;
}

TEST(ShortenOptions, RefusesTheOldOptionsByName)
{
    for (const char option : std::string("qrn"))
        EXPECT_THAT(complaint({std::string{'-', option}}), HasSubstr("lossy")) << option;
    for (const char option : std::string("keisS"))
        EXPECT_THAT(complaint({std::string{'-', option}}), HasSubstr("seek tables")) << option;
    for (const char option : std::string("acd"))
        EXPECT_THAT(complaint({std::string{'-', option, '1'}}), HasSubstr(std::string{'-', option})) << option;
}
