// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TextHistory.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// A text and its history, as a user changes it.
struct EditedText {
    QString text;
    TextHistory history;

    void type(const QString &after)
    {
        history.addTyping(u"Typing"_s, changeBetween(text, after));
        text = after;
    }
    void change(const QString &name, const QString &after)
    {
        history.add(name, changeBetween(text, after));
        text = after;
    }
    QString undone()
    {
        text = history.undo().appliedTo(text);
        return text;
    }
    QString redone()
    {
        text = history.redo().appliedTo(text);
        return text;
    }
};

} // namespace

TEST(TextChange, IsTheStretchByWhichTwoTextsDiffer)
{
    const TextChange change = changeBetween(u"River of Glass", u"River of Grass");
    EXPECT_EQ(change.start, 10);
    EXPECT_EQ(change.removed, u"l"_s);
    EXPECT_EQ(change.inserted, u"r"_s);
    EXPECT_TRUE(changeBetween(u"same", u"same").isEmpty());
    EXPECT_EQ(changeBetween(u"aaa", u"aa").removed, u"a"_s);
    EXPECT_EQ(changeBetween(u"", u"new").inserted, u"new"_s);
}

TEST(TextChange, LeadsFromOneTextToTheOtherAndBack)
{
    const std::array texts = {QString(),   u"a"_s,    u"aa"_s,   u"aaa"_s,          u"ab"_s,           u"ba"_s,
                              u"a\nb\n"_s, u"b\na"_s, u"\n\n"_s, u"a\U0001F3B8b"_s, u"a\U0001F3B9b"_s, u"\U0001F3B8"_s};
    for (const QString &before : texts) {
        for (const QString &after : texts) {
            const TextChange change = changeBetween(before, after);
            EXPECT_EQ(change.appliedTo(before), after);
            EXPECT_EQ(change.reversed().appliedTo(after), before);
        }
    }
}

TEST(TextChange, NeverPartsAPair)
{
    // The two differ in their second halves, the next two in their first halves.
    EXPECT_EQ(changeBetween(u"a\U0001F3B8b", u"a\U0001F3B9b").removed, u"\U0001F3B8"_s);
    EXPECT_EQ(changeBetween(u"a\U0001F3B8b", u"a\U000103B8b").removed, u"\U0001F3B8"_s);
}

TEST(TextHistory, NamesTheStepsThatItUndoesAndRedoes)
{
    EditedText edited;
    EXPECT_FALSE(edited.history.undoName());
    EXPECT_FALSE(edited.history.redoName());
    edited.change(u"Load"_s, u"01 A\n02 B\n"_s);
    edited.change(u"Trim"_s, u"A\nB\n"_s);
    EXPECT_EQ(edited.history.undoName(), u"Trim"_s);
    EXPECT_EQ(edited.undone(), u"01 A\n02 B\n"_s);
    EXPECT_EQ(edited.history.undoName(), u"Load"_s);
    EXPECT_EQ(edited.history.redoName(), u"Trim"_s);
    EXPECT_EQ(edited.undone(), QString());
    EXPECT_FALSE(edited.history.undoName());
    EXPECT_EQ(edited.redone(), u"01 A\n02 B\n"_s);
    EXPECT_EQ(edited.redone(), u"A\nB\n"_s);
    EXPECT_FALSE(edited.history.redoName());
}

TEST(TextHistory, ForgetsWhatWasUndoneOnceThereIsAnotherStep)
{
    EditedText edited;
    edited.change(u"One"_s, u"1"_s);
    edited.change(u"Two"_s, u"12"_s);
    EXPECT_EQ(edited.undone(), u"1"_s);
    edited.change(u"Three"_s, u"13"_s);
    EXPECT_FALSE(edited.history.redoName());
    EXPECT_EQ(edited.undone(), u"1"_s);
    EXPECT_EQ(edited.undone(), QString());
}

TEST(TextHistory, TakesNoChangeForNoStep)
{
    EditedText edited;
    edited.change(u"Load"_s, QString());
    edited.type(QString());
    EXPECT_FALSE(edited.history.undoName());
}

TEST(TextHistory, JoinsWhatIsTypedOnALine)
{
    EditedText edited;
    for (const QString &text : {u"G"_s, u"Gl"_s, u"Gla"_s, u"Gla\n"_s, u"Gla\nR"_s, u"Gla\nRi"_s})
        edited.type(text);
    EXPECT_EQ(edited.undone(), u"Gla\n"_s);
    EXPECT_EQ(edited.undone(), u"Gla"_s);
    EXPECT_EQ(edited.undone(), QString());
}

TEST(TextHistory, JoinsWhatIsDeletedInOneDirection)
{
    EditedText edited;
    edited.change(u"Load"_s, u"abcdef"_s);
    for (const QString &text : {u"abcde"_s, u"abcd"_s, u"abc"_s})
        edited.type(text);
    EXPECT_EQ(edited.undone(), u"abcdef"_s);
    for (const QString &text : {u"bcdef"_s, u"cdef"_s})
        edited.type(text);
    EXPECT_EQ(edited.undone(), u"abcdef"_s);
    EXPECT_EQ(edited.history.undoName(), u"Load"_s);
}

TEST(TextHistory, PartsTypingFromDeletingPastingAndOtherPlaces)
{
    EditedText edited;
    for (const QString &text : {u"a"_s, u"ab"_s, u"a"_s, u"a pasted"_s, u"a pastedc"_s, u"xa pastedc"_s})
        edited.type(text);
    EXPECT_EQ(edited.undone(), u"a pastedc"_s);
    EXPECT_EQ(edited.undone(), u"a pasted"_s);
    EXPECT_EQ(edited.undone(), u"a"_s);
    EXPECT_EQ(edited.undone(), u"ab"_s);
    EXPECT_EQ(edited.undone(), QString());
}

TEST(TextHistory, BeginsANewStepBehindOneThatWasUndoneOrRedone)
{
    EditedText edited;
    edited.type(u"a"_s);
    edited.undone();
    edited.redone();
    edited.type(u"ab"_s);
    EXPECT_EQ(edited.undone(), u"a"_s);
}

TEST(TextHistory, KeepsTheLastThousandSteps)
{
    EditedText edited;
    for (int number = 0; number < 1005; ++number)
        edited.change(u"Step"_s, QString::number(number));
    int steps = 0;
    for (; edited.history.undoName(); ++steps)
        edited.undone();
    EXPECT_EQ(steps, 1000);
    EXPECT_EQ(edited.text, u"4"_s);
}

TEST(TextHistory, KeepsTheLastStepHoweverLargeItIs)
{
    EditedText edited;
    const QString large(40'000'000, u'a');
    edited.change(u"First"_s, large);
    edited.change(u"Second"_s, QString(40'000'000, u'b'));
    EXPECT_EQ(edited.history.undoName(), u"Second"_s);
    EXPECT_TRUE(edited.undone() == large);
    EXPECT_FALSE(edited.history.undoName()) << "together they hold more than the history does";
}

} // namespace nurv::test
