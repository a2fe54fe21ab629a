// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/NamedConversion.h"

#include "support/ToolError.h"

#include <gmock/gmock.h>

namespace nurv::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Words = std::vector<std::string>;

TEST(NamedConversion, TakesTheCallsOfTheApplication)
{
    const auto decoding =
        parseNamedConversion(Words{"-P", "pct", "-O", "always", "-o", "wav", "-n", "/out/a b.wav", "/in/a b.shn"});
    ASSERT_TRUE(decoding);
    EXPECT_EQ(decoding->output, "/out/a b.wav");
    EXPECT_EQ(decoding->overwrite, NamedConversion::Overwrite::Always);
    EXPECT_THAT(decoding->options, ElementsAre("-P", "pct", "-O", "always", "-o", "wav"));
    EXPECT_EQ(decoding->source, "/in/a b.shn");
    const auto encoding = parseNamedConversion(
        Words{"-P", "pct", "-O", "never", "-o", "cust ext=mp3 lame -b 160 - %f", "-n", "/out/a.mp3", "/in/a.FLAC"});
    ASSERT_TRUE(encoding);
    EXPECT_EQ(encoding->overwrite, NamedConversion::Overwrite::Never);
    EXPECT_THAT(encoding->options, ElementsAre("-P", "pct", "-O", "never", "-o", "cust ext=mp3 lame -b 160 - %f"));
    EXPECT_EQ(encoding->output, "/out/a.mp3");
}

TEST(NamedConversion, TakesOptionsInEveryFormAndOrder)
{
    const Words calls[] = {
        {"-n", "out.wav", "in.flac", "-q", "-w"},         {"in.flac", "-qwn", "out.wav"},
        {"-q", "-nout.wav", "-w", "--", "in.flac"},       {"-qw", "in.flac", "-n", "out.wav"},
        {"-n", "old", "-qw", "in.flac", "-n", "out.wav"},
    };
    for (const Words &call : calls) {
        const auto conversion = parseNamedConversion(call);
        ASSERT_TRUE(conversion);
        EXPECT_EQ(conversion->output, "out.wav");
        EXPECT_EQ(conversion->overwrite, NamedConversion::Overwrite::Ask);
        EXPECT_THAT(conversion->options, ElementsAre("-q", "-w"));
        EXPECT_EQ(conversion->source, "in.flac");
    }
}

TEST(NamedConversion, TakesNamesThatLookLikeOptions)
{
    const auto conversion = parseNamedConversion(Words{"-n", "-n", "--", "-x.flac"});
    ASSERT_TRUE(conversion);
    EXPECT_EQ(conversion->output, "-n");
    EXPECT_EQ(conversion->source, "-x.flac");
}

TEST(NamedConversion, PutsARelativeNameIntoTheFolderThatIsGiven)
{
    EXPECT_EQ(parseNamedConversion(Words{"-d", "out", "-n", "a.wav", "b.flac"})->output, "out/a.wav");
    EXPECT_EQ(parseNamedConversion(Words{"-d", "", "-n", "a.wav", "b.flac"})->output, "a.wav");
    EXPECT_EQ(parseNamedConversion(Words{"-d", "out", "-n", "/x/a.wav", "b.flac"})->output, "/x/a.wav");
    EXPECT_TRUE(parseNamedConversion(Words{"-d", "out", "-n", "a.wav", "b.flac"})->options.empty());
}

TEST(NamedConversion, ReadsStandardInputWhereToldSo)
{
    const auto conversion = parseNamedConversion(Words{"-t", "-n", "a.wav"});
    ASSERT_TRUE(conversion);
    EXPECT_FALSE(conversion->source);
    EXPECT_THAT(conversion->options, ElementsAre("-t"));
}

TEST(NamedConversion, LeavesEverythingElseToTheDistribution)
{
    const Words calls[] = {
        {},         {"in.flac"},       {"-o", "wav", "in.flac"},     {"--", "-n", "out"},          {"-h"},
        {"-v"},     {"-n", "a", "-h"}, {"-n", "a", "-x", "in.flac"}, {"-n", "a", "in.flac", "-o"}, {"-o", "-n", "a"},
        {"--help"},
    };
    for (const Words &call : calls)
        EXPECT_FALSE(parseNamedConversion(call)) << ::testing::PrintToString(call);
}

TEST(NamedConversion, RefusesANameThatMakesNoSense)
{
    const std::pair<Words, const char *> cases[] = {
        {{"in.flac", "-n"}, "needs the name"},
        {{"-n", "", "in.flac"}, "needs the name"},
        {{"-n", "a.wav"}, "takes 1 source files, not 0"},
        {{"-n", "a.wav", "1.flac", "2.flac"}, "takes 1 source files, not 2"},
        {{"-t", "-n", "a.wav", "1.flac"}, "takes 0 source files, not 1"},
        {{"-F", "list", "-n", "a.wav"}, "does not go with -F"},
    };
    for (const auto &[call, text] : cases) {
        try {
            static_cast<void>(parseNamedConversion(call));
            ADD_FAILURE() << text;
        } catch (const ToolError &error) {
            EXPECT_EQ(error.kind(), ToolError::Kind::BadArguments);
            EXPECT_THAT(error.what(), HasSubstr(text));
        }
    }
}

} // namespace

} // namespace nurv::test
