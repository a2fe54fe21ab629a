// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ScriptedPrompts.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

const Alert kQuestion{.title = u"Go on?"_s, .message = u"Really"_s, .buttons = {u"No"_s, u"Yes"_s}};

} // namespace

TEST(ScriptedPrompts, AnswersEveryKindOfQuestionInOrder)
{
    ScriptedPrompts prompts;
    prompts.expectAsk(kQuestion, u"Yes"_s);
    prompts.expectFiles({u"Files"_s, u"Add"_s}, {u"/a"_s, u"/b"_s});
    prompts.expectOutputFolder(u"/out"_s);
    prompts.expectSavePath(u"list.md5"_s, std::nullopt, std::nullopt);
    EXPECT_EQ(prompts.unaskedCount(), 4);

    EXPECT_EQ(prompts.ask(kQuestion), u"Yes"_s);
    EXPECT_EQ(prompts.chooseFiles({u"Files"_s, u"Add"_s}), (QStringList{u"/a"_s, u"/b"_s}));
    EXPECT_EQ(prompts.chooseFolder({u"Choose output directory"_s, {}}), u"/out"_s);
    EXPECT_EQ(prompts.chooseSavePath({.title = {}, .suggestedName = u"list.md5"_s}), std::nullopt);
    EXPECT_EQ(prompts.unaskedCount(), 0);
}

TEST(ScriptedPrompts, FailsOnAQuestionThatIsNotInTheScriptAndAnswersNo)
{
    ScriptedPrompts prompts;
    QString answer;
    EXPECT_NONFATAL_FAILURE(answer = prompts.ask(kQuestion), "Unexpected question: alert \"Go on?\"");
    EXPECT_EQ(answer, u"No"_s);
}

TEST(ScriptedPrompts, FailsOnOtherButtonsOrAnotherText)
{
    ScriptedPrompts prompts;
    prompts.expectAsk(kQuestion, u"Yes"_s);
    Alert turned = kQuestion;
    turned.buttons = {u"Yes"_s, u"No"_s};
    EXPECT_NONFATAL_FAILURE(prompts.ask(turned), "expected: alert \"Go on?\"");
    Alert silent = kQuestion;
    silent.message.clear();
    EXPECT_NONFATAL_FAILURE(prompts.ask(silent), "Unexpected question");
    EXPECT_EQ(prompts.ask(kQuestion), u"Yes"_s);
}

TEST(ScriptedPrompts, FailsWhenTheQuestionsComeInAnotherOrder)
{
    ScriptedPrompts prompts;
    prompts.expectOutputFolder(u"/out"_s);
    prompts.expectAsk(kQuestion, u"Yes"_s);
    EXPECT_NONFATAL_FAILURE(prompts.ask(kQuestion), "expected: folder chooser \"Choose output directory\"");
    EXPECT_NE(prompts.chooseFolder({u"Choose output directory"_s, {}}), std::nullopt);
    EXPECT_EQ(prompts.ask(kQuestion), u"Yes"_s);
}

TEST(ScriptedPrompts, FailsWhenAnAnswerIsNeverAskedFor)
{
    auto prompts = std::make_unique<ScriptedPrompts>();
    prompts->expectAsk(kQuestion, u"Yes"_s);
    EXPECT_NONFATAL_FAILURE(prompts.reset(), "Nobody asked: alert \"Go on?\"");
}

TEST(ScriptedPrompts, FailsWhenTheScriptNamesAButtonThatIsNotThere)
{
    ScriptedPrompts prompts;
    EXPECT_NONFATAL_FAILURE(prompts.expectAsk(kQuestion, u"Perhaps"_s), "No such button: Perhaps");
    EXPECT_EQ(prompts.ask(kQuestion), u"Perhaps"_s);
}

} // namespace nurv::test
