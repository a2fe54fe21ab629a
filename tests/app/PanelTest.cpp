// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Panel.h"

#include "app/ExamplePanels.h"
#include "app/ScriptedPrompts.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace nurv::test {

namespace {

const PanelQuestion kPrefixQuestion{.title = u"Batch Rename"_s,
                                    .message = u"Enter the Prefix that you want the files to start with:"_s,
                                    .fields = {u"prefix"_s}};
const PanelQuestion kTrimQuestion{.title = u"Remove Characters"_s, .fields = {u"number"_s, u"position"_s}};
const PanelQuestion kNamesQuestion{
    .title = u"Track Names"_s,
    .message = u"One name a line:"_s,
    .fields = {u"names"_s},
    .buttons = {u"&Load…"_s, u"&Remove Characters…"_s, u"Cancel"_s, u"OK"_s}};
const PanelQuestion kTagsQuestion{.title = u"Custom Tags"_s,
                                  .message = u"Fields that only FLAC files take:"_s,
                                  .fields = {u"custom"_s},
                                  .buttons = {u"Done"_s}};

} // namespace

TEST(Panel, ObjectsInTheWordsOfItsFirstFieldThatDoes)
{
    PrefixPanel example;
    Panel panel = example.panel();
    EXPECT_EQ(panel.objection(), u"Type what the names are to start with."_s);
    example.prefix.setText(u"a/b"_s);
    EXPECT_EQ(panel.objection(), u"A prefix with a slash would name a folder."_s);
    example.prefix.setText(u"a"_s);
    EXPECT_EQ(panel.objection(), QString());
    LabelControl label(u"x"_s);
    panel.fields.push_back({.name = u"label"_s, .control = &label, .objection = [] { return u"last"_s; }});
    EXPECT_EQ(panel.objection(), u"last"_s);
    label.setHidden(true);
    EXPECT_EQ(panel.objection(), QString()) << "nobody could mend what is hidden";
    label.setHidden(false);
    label.setEnabled(false);
    EXPECT_EQ(panel.objection(), QString());
}

TEST(Panel, NamesAFieldByItsCaption)
{
    PrefixPanel prefix;
    CustomTagsPanel tags;
    EXPECT_EQ(prefix.panel().fields.at(0).title(), u"Prefix"_s);
    EXPECT_EQ(tags.panel().fields.at(0).title(), u"custom"_s);
}

TEST(ScriptedPanel, SetsTheControlsAndPressesTheButton)
{
    PrefixPanel example;
    ScriptedPrompts prompts;
    prompts.expectPanel(
        kPrefixQuestion, [](const Panel &panel) { fieldOf<TextControl>(panel, u"prefix"_s).setText(u"gd77-"_s); }, u"OK"_s);
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.prefix.text(), u"gd77-"_s);
    prompts.expectPanel(
        kPrefixQuestion, [](const Panel &panel) { fieldOf<TextControl>(panel, u"prefix"_s).setText(u"x"_s); }, u"Cancel"_s);
    EXPECT_FALSE(prompts.runPanel(example.panel()));
}

TEST(ScriptedPanel, AsksForANumberAndAPosition)
{
    TrimPanel example;
    ScriptedPrompts prompts;
    prompts.expectPanel(
        kTrimQuestion,
        [](const Panel &panel) {
            fieldOf<StepperControl>(panel, u"number"_s).setIntegerValue(3);
            EXPECT_TRUE(fieldOf<ChoiceControl>(panel, u"position"_s).selectTitle(u"end"_s));
        },
        u"OK"_s);
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.number.integerValue(), 3);
    EXPECT_EQ(example.position.selectedColumn(), 1);
}

TEST(ScriptedPanel, FillsEightRows)
{
    CustomTagsPanel example;
    ScriptedPrompts prompts;
    prompts.expectPanel(
        kTagsQuestion,
        [](const Panel &panel) {
            auto &tags = fieldOf<PairsControl>(panel, u"custom"_s);
            tags.setPair(0, {.name = u"TAPER"_s, .value = u"Anna"_s});
            tags.setPair(7, {.name = u"SOURCE"_s, .value = u"SBD"_s});
            tags.setPair(8, {.name = u"TOO"_s, .value = u"MANY"_s});
        },
        u"Done"_s);
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.tags.rowCount(), 8);
    EXPECT_EQ(example.tags.pairs().at(0), (PairsControl::Pair{u"TAPER"_s, u"Anna"_s}));
    EXPECT_EQ(example.tags.pairs().at(7), (PairsControl::Pair{u"SOURCE"_s, u"SBD"_s}));
    EXPECT_EQ(example.tags.pairs().at(1), PairsControl::Pair());
}

TEST(ScriptedPanel, LoadsAndTrimsTrackNamesBeforeItIsAccepted)
{
    const TestFolder folder;
    const QString file = folder.write(u"names.txt"_s, "01 Intro\r\nB\r\n03 Song\r\n");
    ScriptedPrompts prompts;
    NamesPanel example(prompts);
    prompts.expectPanel(
        kNamesQuestion,
        [&](const Panel &panel) {
            prompts.expectFile({.title = u"Choose file with track names"_s, .extensions = {u"txt"_s}}, file);
            pressButtonOf(panel, u"&Load…"_s);
            auto &names = fieldOf<LinesControl>(panel, u"names"_s);
            EXPECT_EQ(names.text(), u"01 Intro\nB\n03 Song\n"_s);
            names.setSelection(0, 10);
            prompts.expectPanel(
                kTrimQuestion,
                [](const Panel &trim) { fieldOf<StepperControl>(trim, u"number"_s).setIntegerValue(3); }, u"OK"_s);
            pressButtonOf(panel, u"&Remove Characters…"_s);
        },
        u"OK"_s);
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_THAT(example.names.lines(), ElementsAre(u"Intro"_s, u"03 Song"_s));
}

TEST(ScriptedPanel, FailsOnOtherTextsFieldsOrButtons)
{
    PrefixPanel example;
    QList<PanelQuestion> others(4, kPrefixQuestion);
    others[0].title = u"Rename"_s;
    others[1].message.clear();
    others[2].fields.append(u"number"_s);
    others[3].buttons = {u"OK"_s, u"Cancel"_s};
    for (const PanelQuestion &other : others) {
        ScriptedPrompts prompts;
        prompts.expectPanel(other, {}, u"OK"_s);
        bool accepted = true;
        EXPECT_NONFATAL_FAILURE(accepted = prompts.runPanel(example.panel()),
                                "Unexpected question: panel \"Batch Rename\"");
        EXPECT_FALSE(accepted);
        EXPECT_NONFATAL_FAILURE(prompts.verify(), "Nobody asked: panel");
    }
}

TEST(ScriptedPanel, FailsWhenAButtonIsPressedThatIsDisabled)
{
    PrefixPanel example;
    ScriptedPrompts prompts;
    prompts.expectPanel(kPrefixQuestion, {}, u"OK"_s);
    bool accepted = true;
    EXPECT_NONFATAL_FAILURE(accepted = prompts.runPanel(example.panel()),
                            "OK is disabled: Type what the names are to start with.");
    EXPECT_FALSE(accepted);
}

TEST(LinesControl, KeepsLineFeedsAndGivesTheLinesThatAreNotEmpty)
{
    LinesControl control;
    control.setText(u"a\r\n\r\nb\rc\u2028d\u2029e\u00a0f"_s);
    EXPECT_EQ(control.text(), u"a\n\nb\nc\nd\ne\u00a0f"_s);
    EXPECT_THAT(control.lines(), ElementsAre(u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e\u00a0f"_s));
}

TEST(LinesControl, SelectsWhatThereIsAndNothingOfAnotherText)
{
    LinesControl control(u"abcdef"_s);
    control.setSelection(4, 10);
    EXPECT_EQ(control.selectionStart(), 4);
    EXPECT_EQ(control.selectionLength(), 2);
    control.setSelection(-3, -1);
    EXPECT_EQ(control.selectionStart(), 0);
    EXPECT_EQ(control.selectionLength(), 0);
    control.setSelection(1, 2);
    control.setText(u"abcdef"_s);
    EXPECT_EQ(control.selectionLength(), 2);
    control.setText(u"other"_s);
    EXPECT_EQ(control.selectionLength(), 0);
}

TEST(PairsControl, TellsOfEveryChangeAndClears)
{
    PairsControl control(2);
    int changes = 0;
    QObject::connect(&control, &Control::valueChanged, &control, [&] { ++changes; });
    control.setPair(1, {.name = u"a"_s, .value = u"b"_s});
    control.setPair(1, {.name = u"a"_s, .value = u"b"_s});
    control.setPair(-1, {.name = u"a"_s, .value = u"b"_s});
    EXPECT_EQ(changes, 1);
    control.clear();
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(control.pairs(), ElementsAre(PairsControl::Pair(), PairsControl::Pair()));
}

} // namespace nurv::test
