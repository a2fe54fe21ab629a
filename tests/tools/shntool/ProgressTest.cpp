// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/Progress.h"

#include "shntool/RunMessages.h"

#include <gtest/gtest.h>

namespace nurv::test {

namespace {

/// What a task of 200 bytes tells that ends well after pieces of these sizes.
std::string toldOf(ProgressStyle style, std::initializer_list<uint64_t> pieces)
{
    RunMessages messages("shntool", "conv");
    messages.progressStyle = style;
    ::testing::internal::CaptureStderr();
    Progress progress(messages, {.action = "Converting",
                                .file = "a",
                                .fileDetail = "0:01.00",
                                .link = "-->",
                                .otherFile = "b",
                                .otherDetail = {},
                                .totalBytes = 200});
    for (const uint64_t bytes : pieces)
        progress.add(bytes);
    progress.succeed();
    const std::string told = ::testing::internal::GetCapturedStderr();
    const std::string head = "Converting [a] (0:01.00) --> [b] : ";
    EXPECT_EQ(told.substr(0, head.size()), head);
    return told.substr(head.size());
}

TEST(Progress, ShowsEachPercentageOnce)
{
    EXPECT_EQ(toldOf(ProgressStyle::Percent, {1, 1, 99, 99}), "  0% \b\b\b\b\b  1% \b\b\b\b\b 50% \b\b\b\b\b100% OK\n");
}

TEST(Progress, NeverShowsMoreThanAll)
{
    EXPECT_EQ(toldOf(ProgressStyle::Percent, {500, 500}), "  0% \b\b\b\b\b100% OK\n");
}

TEST(Progress, ShowsTheOtherStyles)
{
    EXPECT_EQ(toldOf(ProgressStyle::Dots, {90, 110}), ".......... OK\n");
    EXPECT_EQ(toldOf(ProgressStyle::Faces, {90}), ":-( \b\b\b\b:-\\ \b\b\b\b:-D OK\n");
    EXPECT_EQ(toldOf(ProgressStyle::None, {90}), "OK\n");
    EXPECT_EQ(toldOf(ProgressStyle::Spinner, {4}).substr(0, 12), "| \b\b/ \b\b- \b\b");
}

TEST(RunMessages, NamesCannotMakeUpMessages)
{
    const RunMessages messages("shntool", "hash");
    ::testing::internal::CaptureStderr();
    messages.warn("cannot open non-existent file: [a\nshntool [hash]: error: b]");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "shntool [hash]: warning: cannot open non-existent file: [a\n"
                                                        "shntool [hash]:          shntool [hash]: error: b]\n");
}

} // namespace

} // namespace nurv::test
