// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVStringGetterPanel.h"

#include "app/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

const QString kMessage = u"Enter the Prefix that you want the files to start with:"_s;

class StringGetterPanelTest : public ::testing::Test {
protected:
    /// The user types the text and presses the button.
    void expectTyped(const PanelQuestion &question, const QString &text, const QString &button)
    {
        prompts.expectPanel(
            question, [text](const Panel &shown) { fieldOf<TextControl>(shown, u"prefix"_s).setText(text); }, button);
    }
    /// The user presses the button at once.
    void expectPressed(const PanelQuestion &question, const QString &button) { prompts.expectPanel(question, {}, button); }

    const PanelQuestion kQuestion{.title = u"Enter Text"_s, .message = kMessage, .fields = {u"prefix"_s}};

    ScriptedPrompts prompts;
    NURVStringGetterPanel panel{prompts, u"prefix"_s};
};

} // namespace

TEST_F(StringGetterPanelTest, ReturnsWhatWasTypedAndConfirmed)
{
    expectTyped(kQuestion, u"gd77-"_s, u"OK"_s);
    EXPECT_EQ(panel.runPanel(u"Batch Rename"_s, kMessage, QString()), u"gd77-"_s);
    EXPECT_EQ(panel.enteredText(), u"gd77-"_s);
}

TEST_F(StringGetterPanelTest, ReturnsNothingWhenCancelledWhateverWasTyped)
{
    expectTyped(kQuestion, u"gd77-"_s, u"Cancel"_s);
    EXPECT_EQ(panel.runPanel(u"Batch Rename"_s, kMessage, QString()), std::nullopt);
    EXPECT_EQ(panel.enteredText(), u"gd77-"_s);
}

TEST_F(StringGetterPanelTest, ReturnsAnEmptyTextThatWasConfirmed)
{
    expectPressed(kQuestion, u"OK"_s);
    EXPECT_EQ(panel.runPanel(u"Batch Rename"_s, kMessage, QString()), QString());
}

TEST_F(StringGetterPanelTest, BeginsWithTheInitialTextAndKeepsWhatIsNotGiven)
{
    expectPressed(kQuestion, u"OK"_s);
    EXPECT_EQ(panel.runPanel({}, kMessage, u"first"_s), u"first"_s);
    expectPressed(kQuestion, u"OK"_s);
    EXPECT_EQ(panel.runPanel({}, std::nullopt, std::nullopt), u"first"_s);
    expectPressed(kQuestion, u"OK"_s);
    EXPECT_EQ(panel.runPanel({}, std::nullopt, QString()), QString());
}

TEST_F(StringGetterPanelTest, CanBeConfirmedAgainAfterItWasCancelled)
{
    expectPressed(kQuestion, u"Cancel"_s);
    EXPECT_FALSE(panel.runPanel({}, kMessage, u"a"_s));
    expectPressed(kQuestion, u"OK"_s);
    EXPECT_EQ(panel.runPanel({}, kMessage, u"b"_s), u"b"_s);
    expectPressed(kQuestion, u"Cancel"_s);
    EXPECT_FALSE(panel.runPanel({}, kMessage, u"c"_s));
}

TEST_F(StringGetterPanelTest, TakesAnotherTitleOnlyWhenItWasToldSo)
{
    panel.setTitle(u"set"_s);
    expectPressed({.title = u"Batch Rename"_s, .message = kMessage, .fields = {u"prefix"_s}}, u"Cancel"_s);
    EXPECT_FALSE(panel.runPanel(u"Batch Rename"_s, kMessage, QString()));
}

} // namespace nurv::test
