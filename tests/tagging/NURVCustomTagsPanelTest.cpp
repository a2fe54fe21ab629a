// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/NURVCustomTagsPanel.h"

#include "app/ScriptedPrompts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

class NURVCustomTagsPanelTest : public ::testing::Test {
protected:
    ScriptedPrompts prompts;
    NURVCustomTagsPanel panel{prompts};
};

TEST_F(NURVCustomTagsPanelTest, EightBlankRowsGiveOneBlankEntry)
{
    EXPECT_FALSE(panel.customTagDictionary().has_value());
    panel.fillTagsDictionary();
    EXPECT_EQ(*panel.customTagDictionary(), (NURVCustomTagsPanel::Tags{{u""_s, u""_s}}));
}

TEST_F(NURVCustomTagsPanelTest, ShowsTheFirstEightInTheOrderOfTheirNames)
{
    NURVCustomTagsPanel::Tags tags;
    for (int i = 9; i >= 1; --i)
        tags.insert(u"N%1"_s.arg(i), u"V%1"_s.arg(i));
    panel.fillTags(tags);
    EXPECT_EQ(panel.customTagNameText(1), u"N1");
    EXPECT_EQ(panel.customTagValueText(8), u"V8");
    EXPECT_EQ(panel.customTagNameText(9), QString());
    EXPECT_EQ(panel.customTagDictionary()->size(), 9);
    panel.fillTagsDictionary();
    EXPECT_EQ(panel.customTagDictionary()->size(), 8);
}

TEST_F(NURVCustomTagsPanelTest, TheLastRowOfAnEqualNameCountsAndBlanksAreTrimmed)
{
    panel.setValue(u" MOOD "_s, u"\tblue\n"_s, 1);
    panel.setValue(u"MOOD"_s, u" red "_s, 3);
    panel.fillTagsDictionary();
    EXPECT_EQ(panel.customTagDictionary()->value(u"MOOD"_s), u"red");
}

TEST_F(NURVCustomTagsPanelTest, ClearingEmptiesTheRowsAlone)
{
    panel.fillTags({{u"A"_s, u"1"_s}});
    panel.clearTags();
    EXPECT_EQ(panel.customTagNameText(1), QString());
    EXPECT_EQ(panel.customTagDictionary()->size(), 1);
}

TEST_F(NURVCustomTagsPanelTest, CollectsTheRowsWhenItIsLeft)
{
    prompts.expectPanel(
        {.title = u"Custom Tags"_s,
         .message = u"Further fields of FLAC files: a name and a value in each row. Fields without a row stay "
                    "as they are, unless empty fields are written."_s,
         .fields = {u"custom"_s},
         .buttons = {u"OK"_s}},
        [](const Panel &shown) {
            fieldOf<PairsControl>(shown, u"custom"_s).setPair(7, {.name = u"KEY"_s, .value = u"C"_s});
        },
        u"OK"_s);
    panel.runPanel();
    EXPECT_EQ(panel.customTagDictionary()->value(u"KEY"_s), u"C");
}

} // namespace
} // namespace nurv::test
