// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaencOptions.h"

#include "support/TestFolder.h"
#include "support/ToolError.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using Mode = TtaencOptions::Mode;

TtaencOptions parsed(const std::vector<std::string> &arguments)
{
    return TtaencOptions::fromArguments(arguments);
}

std::string refusalOf(const std::vector<std::string> &arguments)
{
    try {
        [[maybe_unused]] const TtaencOptions options = parsed(arguments);
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::BadArguments);
        return error.what();
    }
    return "accepted";
}

TEST(TtaencOptions, TakesOptionsInAnyOrder)
{
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"-d", "-o", "-", "a.tta"}, {"a.tta", "-o", "-", "-d"}, {"-o", "-", "a.tta", "-d"}}) {
        const TtaencOptions options = parsed(arguments);
        EXPECT_EQ(options.mode, Mode::Decode);
        EXPECT_EQ(options.input, "a.tta");
        EXPECT_EQ(options.output, "-");
    }
    const TtaencOptions encode = parsed({"-e", "-o", "a.tta", "-"});
    EXPECT_EQ(encode.mode, Mode::Encode);
    EXPECT_EQ(encode.input, "-");
    EXPECT_EQ(encode.output, "a.tta");
    EXPECT_EQ(parsed({"-t", "a.tta"}).mode, Mode::Test);
    EXPECT_EQ(parsed({"a.wav"}).mode, Mode::ByInput);
}

TEST(TtaencOptions, TakesNamesThatLookLikeOptionsAfterTwoDashes)
{
    EXPECT_EQ(parsed({"-e", "--", "-d"}).input, "-d");
    EXPECT_EQ(parsed({"-e", "--", "-d"}).mode, Mode::Encode);
    EXPECT_EQ(parsed({"-o", "-x", "a"}).output, "-x");
}

TEST(TtaencOptions, NamesWhatIsWrong)
{
    EXPECT_EQ(refusalOf({}), "no input given");
    EXPECT_EQ(refusalOf({"-e"}), "no input given");
    EXPECT_EQ(refusalOf({""}), "a file name is empty");
    EXPECT_EQ(refusalOf({"a", "b"}), "more than one input: 'a' and 'b'");
    EXPECT_EQ(refusalOf({"-x", "a"}), "unknown option '-x'");
    EXPECT_EQ(refusalOf({"a", "-o"}), "-o needs the name of an output");
    EXPECT_EQ(refusalOf({"a", "-o", ""}), "-o needs the name of an output");
    EXPECT_EQ(refusalOf({"a", "-o", "b", "-o", "c"}), "more than one output: 'b' and 'c'");
    EXPECT_EQ(refusalOf({"-e", "-d", "a"}), "only one of -e, -d and -t can be given");
    EXPECT_EQ(refusalOf({"-t", "a", "-o", "b"}), "-t writes no output, so that -o cannot be given");
}

TEST(TtaencOptions, NamesTheOutputAfterTheInput)
{
    const TestFolder folder;
    EXPECT_EQ(parsed({"some/x.y.wav"}).outputName(".tta"), "some/x.y.tta");
    EXPECT_EQ(parsed({"x"}).outputName(".wav"), "x.wav");
    EXPECT_EQ(parsed({"-"}).outputName(".wav"), "-");
    EXPECT_EQ(parsed({"x", "-o", "y"}).outputName(".wav"), "y");
}

TEST(TtaencOptions, ReplacesOnlyAnOutputThatWasNamed)
{
    const TestFolder folder;
    const std::string there = folder.write(u"x.tta"_s, "mine").toStdString();
    const std::string input = folder.path(u"x.wav"_s).toStdString();
    EXPECT_EQ(parsed({input, "-o", there}).outputName(".tta"), there);
    EXPECT_THROW(static_cast<void>(parsed({input}).outputName(".tta")), ToolError);
    // A link to nowhere is something, too.
    const std::string link = folder.makeLink(u"y.tta"_s, u"nowhere"_s).toStdString();
    EXPECT_THROW(static_cast<void>(parsed({folder.path(u"y.wav"_s).toStdString()}).outputName(".tta")), ToolError);
}

} // namespace

} // namespace nurv::test
