// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVTrimCharsPanel.h"

#include "app/TrackNamePanels.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class TrimCharsPanelTest : public ::testing::Test {
protected:
    ScriptedPrompts prompts;
    NURVTrimCharsPanel panel{prompts};
};

} // namespace

TEST_F(TrimCharsPanelTest, ReturnsTheNumberAndTheEndThatWereConfirmed)
{
    expectTrim(prompts, {.number = 3, .position = 0});
    EXPECT_EQ(panel.runPanel(), (TrimCharsObject{.number = 3, .position = 0}));
    expectTrim(prompts, {.number = 12, .position = 1});
    EXPECT_EQ(panel.runPanel(), (TrimCharsObject{.number = 12, .position = 1}));
}

TEST_F(TrimCharsPanelTest, ReturnsNothingWhenCancelledWhateverWasTyped)
{
    expectTrim(prompts, {.number = 3, .position = 1}, u"Cancel"_s);
    EXPECT_EQ(panel.runPanel(), std::nullopt);
}

TEST_F(TrimCharsPanelTest, BeginsWithZeroAtTheStartAndThenWithWhatWasInItLast)
{
    prompts.expectPanel(kTrimQuestion, {}, u"OK"_s);
    EXPECT_EQ(panel.runPanel(), TrimCharsObject());
    expectTrim(prompts, {.number = 7, .position = 1}, u"Cancel"_s);
    EXPECT_FALSE(panel.runPanel());
    prompts.expectPanel(kTrimQuestion, {}, u"OK"_s);
    EXPECT_EQ(panel.runPanel(), (TrimCharsObject{.number = 7, .position = 1}));
}

TEST_F(TrimCharsPanelTest, TakesNoNumberBelowZero)
{
    expectTrim(prompts, {.number = -4, .position = 0});
    EXPECT_EQ(panel.runPanel(), TrimCharsObject());
}

} // namespace nurv::test
