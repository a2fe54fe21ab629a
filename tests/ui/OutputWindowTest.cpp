// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/OutputWindow.h"

#include "support/WaitUntil.h"
#include "ui/WindowFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class OutputWindowTest : public ::testing::Test {
protected:
    OutputWindowTest()
    {
        output->setTextValue(u"alpha ok\nbeta FAILED\ngamma ok\ndelta failed\n"_s, u"Check / night 1"_s);
        output->show();
        output->activateWindow();
    }
    ~OutputWindowTest() override { delete output; }

    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(output)); }

    QPlainTextEdit *text() const { return output->findChild<QPlainTextEdit *>(u"outputText"_s); }
    QLineEdit *findField() const { return output->findChild<QLineEdit *>(u"findField"_s); }
    int selectedLine() const { return text()->textCursor().blockNumber(); }

    TestFolder folder;
    ScriptedPrompts prompts;
    QPointer<OutputWindow> output = new OutputWindow(prompts);
};

} // namespace

TEST_F(OutputWindowTest, ShowsTheTextReadOnlyInAMonospacedFontOfTenPoints)
{
    EXPECT_EQ(output->windowTitle(), u"Check / night 1"_s);
    EXPECT_TRUE(text()->isReadOnly());
    EXPECT_TRUE(QFontInfo(text()->font()).fixedPitch());
    EXPECT_EQ(text()->font().pointSize(), 10);
    EXPECT_EQ(output->text(), u"alpha ok\nbeta FAILED\ngamma ok\ndelta failed\n"_s);
}

TEST_F(OutputWindowTest, ShowsDirectionMarksControlCharactersAndMarkupAsTheyAre)
{
    output->setTextValue(u"<b>a\u202Evaw.wav\x1b[2J</b>\nb"_s, u"c\u2066d"_s);
    EXPECT_EQ(output->text(), u"<b>a\\u{202E}vaw.wav\\x1B[2J</b>\nb"_s);
    EXPECT_EQ(output->windowTitle(), u"c\\u{2066}d"_s);
}

TEST_F(OutputWindowTest, FindsForwardsAndBackwardsAndGoesOnFromTheOtherEnd)
{
    QTest::keySequence(output, QKeySequence::Find);
    ASSERT_TRUE(findField()->isVisible());
    ASSERT_TRUE(findField()->hasFocus());
    QTest::keyClicks(findField(), u"failed"_s);
    QTest::keyClick(findField(), Qt::Key_Return);
    EXPECT_EQ(selectedLine(), 1);
    EXPECT_EQ(text()->textCursor().selectedText(), u"FAILED"_s);
    QTest::keyClick(findField(), Qt::Key_Return);
    EXPECT_EQ(selectedLine(), 3);
    QTest::keyClick(findField(), Qt::Key_Return);
    EXPECT_EQ(selectedLine(), 1);
    output->findPrevious();
    EXPECT_EQ(selectedLine(), 3);
    output->findPrevious();
    EXPECT_EQ(selectedLine(), 1);
}

TEST_F(OutputWindowTest, SaysWhenATextIsNotFound)
{
    output->showFindBar();
    findField()->setText(u"omega"_s);
    output->findNext();
    EXPECT_EQ(output->findChild<QLabel *>(u"findNote"_s)->text(), u"Not found"_s);
    EXPECT_FALSE(text()->textCursor().hasSelection());
}

TEST_F(OutputWindowTest, EscapeClosesTheFindBarFirstAndThenTheWindow)
{
    output->showFindBar();
    QTest::keyClick(output, Qt::Key_Escape);
    EXPECT_FALSE(findField()->isVisible());
    ASSERT_TRUE(output->isVisible());
    QTest::keyClick(output, Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([this] { return output.isNull(); }));
}

TEST_F(OutputWindowTest, SavesItsTextAsUtf8UnderANameThatAFileMayHave)
{
    output->setTextValue(u"Ré mineur — ok\n"_s, u"Check / night 1"_s);
    prompts.expectSavePath(u"Check - night 1.txt"_s, u"Save output"_s, folder.path(u"report.txt"_s));
    output->findChild<QPushButton *>(u"saveButton"_s)->click();
    EXPECT_EQ(folder.read(u"report.txt"_s), QByteArray("R\xc3\xa9 mineur \xe2\x80\x94 ok\n"));
}

TEST_F(OutputWindowTest, TellsWhyItCouldNotSave)
{
    prompts.expectSavePath(u"Check - night 1.txt"_s, u"Save output"_s, folder.path(u"missing/report.txt"_s));
    const qsizetype before = prompts.shownAlerts().size();
    prompts.expectAsk(
        {.title = u"The output could not be saved"_s, .message = u"No such file or directory"_s, .buttons = {u"OK"_s}},
        u"OK"_s);
    output->save();
    EXPECT_EQ(prompts.shownAlerts().size(), before + 1);
}

TEST_F(OutputWindowTest, CopiesTheSelectionOrEverything)
{
    output->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), output->text());
    QTextCursor cursor = text()->textCursor();
    cursor.setPosition(0);
    cursor.setPosition(16, QTextCursor::KeepAnchor);
    text()->setTextCursor(cursor);
    output->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), u"alpha ok\nbeta FA"_s);
}

TEST_F(OutputWindowTest, CopiesAndSavesNonBreakingBlanksAsTheyAre)
{
    const QString report = u"01\u00A0intro.flac:\u00A0OK\n02.flac: OK"_s;
    output->setTextValue(report, u"Check"_s);
    output->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), report);
    text()->selectAll();
    output->copy();
    EXPECT_EQ(QApplication::clipboard()->text(), report);
    const QString path = folder.path(u"report.txt"_s);
    prompts.expectSavePath(u"Check.txt"_s, u"Save output"_s, path);
    output->save();
    EXPECT_EQ(folder.read(u"report.txt"_s), report.toUtf8());
}

TEST_F(OutputWindowTest, DoesNotLetItsTextBeChanged)
{
    const QString before = output->text();
    QTest::keyClicks(text(), u"typed"_s);
    EXPECT_EQ(output->text(), before);
}

} // namespace nurv::test
