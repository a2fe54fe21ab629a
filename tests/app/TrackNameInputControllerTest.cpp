// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNameInputController.h"

#include "app/TestApplication.h"
#include "app/TrackNamePanels.h"
#include "base/NotificationCenter.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

/// Counts how often a signal is emitted.
template<typename Signal>
class Counted {
public:
    Counted(const TrackNameInputController &names, Signal signal)
    {
        QObject::connect(&names, signal, &m_context, [this] { ++m_count; });
    }
    [[nodiscard]] int count() const { return m_count; }

private:
    QObject m_context;
    int m_count = 0;
};

class TrackNameInputControllerTest : public ::testing::Test {
protected:
    TrackNameInputControllerTest()
    {
        NotificationCenter::instance().subscribe(u"NURVTrackNamesEnteredNotification"_s, &context,
                                                 [this](const QVariant &object, const QVariantMap &information) {
                                                     posted.append(object.toStringList());
                                                     EXPECT_TRUE(information.isEmpty());
                                                     EXPECT_FALSE(names.isVisible());
                                                 });
    }

    void loadFile(const QString &path)
    {
        prompts.expectFile(kNamesFileQuestion, path);
        names.loadTrackNamesFromFile();
    }
    /// What trimming makes of the text when the stretch is selected.
    QString trimmed(const QString &text, qsizetype start, qsizetype length, const TrimCharsObject &trim)
    {
        names.inputText.setText(text);
        names.inputText.setSelection(start, length);
        expectTrim(prompts, trim);
        names.removeCharactersFromText();
        return names.namesText();
    }
    QString trimmedWhole(const QString &text, const TrimCharsObject &trim) { return trimmed(text, 0, text.size(), trim); }

    TestFolder folder;
    ScriptedPrompts prompts;
    TrackNameInputController names{prompts};
    QObject context;
    QList<QStringList> posted;
};

} // namespace

TEST_F(TrackNameInputControllerTest, PostsTheLinesThatAreNotEmptyAndHidesTheWindow)
{
    const Counted hidden(names, &TrackNameInputController::hidden);
    names.show();
    EXPECT_TRUE(names.isVisible());
    names.inputText.setText(u"Intro \n\n  \r\nSong\n"_s);
    names.inputOK();
    EXPECT_EQ(hidden.count(), 1);
    EXPECT_THAT(posted, ElementsAre(QStringList{u"Intro "_s, u"  "_s, u"Song"_s}));
}

TEST_F(TrackNameInputControllerTest, PostsAnEmptyListOfAnEmptyText)
{
    names.show();
    names.inputOK();
    EXPECT_THAT(posted, ElementsAre(QStringList()));
}

TEST_F(TrackNameInputControllerTest, PostsNothingWhenCancelledAndKeepsTheText)
{
    const Counted hidden(names, &TrackNameInputController::hidden);
    names.show();
    names.inputText.setText(u"Intro"_s);
    names.inputCancel();
    EXPECT_EQ(hidden.count(), 1);
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_EQ(names.namesText(), u"Intro"_s);
}

TEST_F(TrackNameInputControllerTest, CanBeShownAgainWithItsTextAndItsSteps)
{
    const Counted shown(names, &TrackNameInputController::shown);
    names.show(2);
    names.setNames(u"A\n"_s);
    names.inputOK();
    names.show();
    EXPECT_EQ(shown.count(), 2);
    EXPECT_EQ(names.namesText(), u"A\n"_s);
    EXPECT_EQ(names.countText(), u"1 name"_s) << "who asks now has told no number of files";
    EXPECT_EQ(names.undoName(), u"Set Track Name Text"_s);
    names.setNames(u"B\n"_s);
    names.inputOK();
    EXPECT_THAT(posted, ElementsAre(QStringList{u"A"_s}, QStringList{u"B"_s}));
}

TEST_F(TrackNameInputControllerTest, LoadsTheTrackNamesOfASetListInOneStep)
{
    names.inputText.setText(u"old"_s);
    loadFile(folder.write(u"set.txt"_s, "3. before\n05/08/1977\n1. Intro 2:05\n2) Song (4:31)\n3.\n"));
    EXPECT_EQ(names.namesText(), u"Intro \nSong \n(blank)\n"_s);
    EXPECT_EQ(names.note.text(), u"Loaded from “set.txt”."_s);
    EXPECT_EQ(names.undoName(), u"Set Track Name Text"_s);
    names.undo();
    EXPECT_EQ(names.namesText(), u"old"_s);
    EXPECT_EQ(names.note.text(), QString());
    EXPECT_EQ(names.redoName(), u"Set Track Name Text"_s);
    EXPECT_EQ(names.undoName(), u"Typing"_s);
    names.redo();
    EXPECT_EQ(names.namesText(), u"Intro \nSong \n(blank)\n"_s);
}

TEST_F(TrackNameInputControllerTest, LoadsNothingWhenNoFileIsChosen)
{
    names.inputText.setText(u"old"_s);
    prompts.expectFile(kNamesFileQuestion, std::nullopt);
    names.loadTrackNamesFromFile();
    EXPECT_EQ(names.namesText(), u"old"_s);
    prompts.expectFile(kNamesFileQuestion, std::nullopt);
    EXPECT_EQ(names.chooseTrackNamesFile(), std::nullopt);
    prompts.expectFile(kNamesFileQuestion, u"/set.txt"_s);
    EXPECT_EQ(names.chooseTrackNamesFile(), u"/set.txt"_s);
}

TEST_F(TrackNameInputControllerTest, KeepsTheTextAndSaysWhyAFileCannotBeLoaded)
{
    names.inputText.setText(u"old"_s);
    prompts.expectFile(kNamesFileQuestion, folder.path(u"missing.txt"_s));
    prompts.expectAsk({.title = u"The track names in “missing.txt” could not be loaded."_s,
                       .message = u"There is no such file."_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    names.loadTrackNamesFromFile();
    prompts.expectAsk({.title = u"The track names in “a\\u{202E}b” could not be loaded."_s,
                       .message = u"It is a folder."_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    names.loadTrackNames(folder.makeFolder(u"a\u202Eb"_s));
    EXPECT_EQ(names.namesText(), u"old"_s);
    EXPECT_EQ(names.undoName(), u"Typing"_s);
}

TEST_F(TrackNameInputControllerTest, SaysWhyAFileHasNoNames)
{
    names.inputText.setText(u"old"_s);
    loadFile(folder.write(u"notes.txt"_s, "Set 1:\n(1) Intro\n"));
    EXPECT_EQ(names.namesText(), QString());
    EXPECT_EQ(names.note.text(), u"No names: no line of “notes.txt” begins with the number 1."_s);
    names.undo();
    EXPECT_EQ(names.namesText(), u"old"_s);
}

TEST_F(TrackNameInputControllerTest, TrimsTheSelectedLinesAndDropsThoseThatAreShorter)
{
    EXPECT_EQ(trimmedWhole(u"01 A\nB"_s, {.number = 3, .position = 0}), u"A\n"_s);
    EXPECT_EQ(names.undoName(), u"Trim Text"_s);
    names.undo();
    EXPECT_EQ(names.namesText(), u"01 A\nB"_s);
    EXPECT_EQ(names.redoName(), u"Trim Text"_s);
}

TEST_F(TrackNameInputControllerTest, TrimsAtTheEndWithAnyPositionButZero)
{
    EXPECT_EQ(trimmedWhole(u"Song 4:31\n\n4:31\nA\n"_s, {.number = 4, .position = 1}), u"Song \n\n"_s)
        << "a line of just as many characters becomes an empty one";
}

TEST_F(TrackNameInputControllerTest, PutsTheNewLinesBetweenWhatIsNotSelected)
{
    const QString text = u"before\n01 A\n02 B\nafter"_s;
    EXPECT_EQ(trimmed(text, 7, 9, {.number = 3, .position = 0}), u"before\nA\nB\nafter"_s)
        << "the line end behind the selection is not doubled";
    EXPECT_EQ(trimmed(text, 7, 10, {.number = 3, .position = 0}), u"before\nA\nB\nafter"_s);
    EXPECT_EQ(trimmed(text, 7, 8, {.number = 3, .position = 0}), u"before\nA\n\nB\nafter"_s)
        << "the selection ends within a line";
    EXPECT_EQ(trimmed(text, 9, 7, {.number = 1, .position = 0}), u"before\n01A\n2 B\nafter"_s)
        << "the selection begins within a line";
    EXPECT_EQ(trimmed(u"A\n\n\nB"_s, 0, 1, {.number = 1, .position = 0}), u"\n\n\nB"_s)
        << "only one line end is dropped";
}

TEST_F(TrackNameInputControllerTest, CountsCharactersAsTheyAreRead)
{
    EXPECT_EQ(trimmedWhole(u"\U0001F3B8e\u0301x"_s, {.number = 2, .position = 0}), u"x\n"_s);
    EXPECT_EQ(trimmedWhole(u"xe\u0301\U0001F3B8"_s, {.number = 2, .position = 1}), u"x\n"_s);
    EXPECT_EQ(trimmedWhole(u"e\u0301"_s, {.number = 2, .position = 0}), QString());
}

TEST_F(TrackNameInputControllerTest, ChangesNothingWithoutANumberASelectionOrAnAnswer)
{
    EXPECT_EQ(trimmedWhole(u"01 A"_s, {.number = 0, .position = 0}), u"01 A"_s);
    EXPECT_EQ(trimmed(u"01 A"_s, 2, 0, {.number = 3, .position = 0}), u"01 A"_s);
    names.inputText.setSelection(0, 4);
    expectTrim(prompts, {.number = 3, .position = 0}, u"Cancel"_s);
    names.removeCharactersFromText();
    EXPECT_EQ(names.namesText(), u"01 A"_s);
    EXPECT_EQ(names.undoName(), u"Typing"_s);
}

TEST_F(TrackNameInputControllerTest, ClearsTheTextInOneStep)
{
    names.setNames(u"A\nB\n"_s);
    names.clear();
    EXPECT_EQ(names.namesText(), QString());
    EXPECT_EQ(names.undoName(), u"Clear"_s);
    names.undo();
    EXPECT_EQ(names.namesText(), u"A\nB\n"_s);
}

TEST_F(TrackNameInputControllerTest, UndoesAndRedoesEveryStepUnderItsName)
{
    names.setNames(u"01 A\n"_s);
    names.setInputTextString(u"A\n"_s);
    names.inputText.setText(u"A\nB"_s);
    for (const QString &step : {u"Typing"_s, u"Trim Text"_s, u"Set Track Name Text"_s}) {
        EXPECT_EQ(names.undoName(), step);
        names.undo();
        EXPECT_EQ(names.redoName(), step);
    }
    names.undo();
    EXPECT_EQ(names.namesText(), QString());
    for (const QString &text : {u"01 A\n"_s, u"A\n"_s, u"A\nB"_s, u"A\nB"_s}) {
        names.redo();
        EXPECT_EQ(names.namesText(), text);
    }
}

TEST_F(TrackNameInputControllerTest, CountsNamesAgainstFiles)
{
    const auto counted = [this](int lines, std::optional<int> files) {
        names.show(files);
        names.inputText.setText(u"A\n\n"_s.repeated(lines));
        return names.countText();
    };
    EXPECT_EQ(counted(0, {}), u"0 names"_s);
    EXPECT_EQ(counted(1, {}), u"1 name"_s);
    EXPECT_EQ(counted(0, 3), u"0 names for 3 files"_s);
    EXPECT_EQ(counted(2, 2), u"2 names for 2 files"_s);
    EXPECT_EQ(counted(1, 3), u"1 name for 3 files: 2 missing"_s);
    EXPECT_EQ(counted(3, 1), u"3 names for 1 file: 2 too many"_s);
}

TEST(TrackNamesOfTheController, AreSharedByTheTools)
{
    TestApplication application;
    const Counted shown(application.controller.trackNameInputController(), &TrackNameInputController::shown);
    application.controller.trackNameInputController().show(3);
    EXPECT_EQ(shown.count(), 1);
}

} // namespace nurv::test
