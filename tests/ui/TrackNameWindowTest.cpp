// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TrackNameWindow.h"

#include "app/TrackNameInputController.h"
#include "app/TrackNamePanels.h"
#include "base/NotificationCenter.h"
#include "support/WaitUntil.h"
#include "ui/DesktopPrompts.h"
#include "ui/PanelDialog.h"
#include "ui/TrackNameEditor.h"
#include "ui/WhenOpen.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTextBlock>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

class TrackNameWindowTest : public ::testing::Test {
protected:
    TrackNameWindowTest()
    {
        NotificationCenter::instance().subscribe(
            u"NURVTrackNamesEnteredNotification"_s, &context,
            [this](const QVariant &object, const QVariantMap &) { posted.append(object.toStringList()); });
    }

    void SetUp() override { show(); }

    void show(std::optional<int> fileCount = std::nullopt)
    {
        names.show(fileCount);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        ASSERT_EQ(window.focusWidget(), &editor()) << "typing begins at once";
    }
    [[nodiscard]] TrackNameEditor &editor() const { return *window.editor(); }
    [[nodiscard]] QPushButton *button(const QString &name) const { return window.findChild<QPushButton *>(name); }
    [[nodiscard]] QString label(const QString &name) const { return window.findChild<QLabel *>(name)->text(); }
    void press(const QKeySequence &keys) { QTest::keySequence(window.focusWidget(), keys); }
    void type(const QString &text) { QTest::keyClicks(&editor(), text); }
    void select(int start, int length)
    {
        QTextCursor cursor = editor().textCursor();
        cursor.setPosition(start);
        cursor.setPosition(start + length, QTextCursor::KeepAnchor);
        editor().setTextCursor(cursor);
    }

    TestFolder folder;
    ScriptedPrompts prompts;
    TrackNameInputController names{prompts};
    TrackNameWindow window{names};
    QObject context;
    QList<QStringList> posted;
};

} // namespace

TEST_F(TrackNameWindowTest, TakesWhatIsTypedAndHandsItOn)
{
    EXPECT_FALSE(window.isModal());
    EXPECT_EQ(window.windowTitle(), u"Track Names"_s);
    type(u"Intro"_s);
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    type(u"Song"_s);
    EXPECT_EQ(names.namesText(), u"Intro\n\nSong"_s);
    press(Qt::CTRL | Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
    EXPECT_THAT(posted, ElementsAre(QStringList{u"Intro"_s, u"Song"_s}));
}

TEST_F(TrackNameWindowTest, IsShownASecondTimeWithWhatItHeld)
{
    type(u"Intro"_s);
    button(u"okButton"_s)->click();
    EXPECT_FALSE(window.isVisible());
    show(2);
    EXPECT_EQ(editor().text(), u"Intro"_s);
    EXPECT_EQ(label(u"nameCount"_s), u"1 name for 2 files: 1 missing"_s);
    press(Qt::Key_End);
    press(Qt::Key_Return);
    type(u"Song"_s);
    EXPECT_EQ(label(u"nameCount"_s), u"2 names for 2 files"_s);
    button(u"okButton"_s)->click();
    EXPECT_THAT(posted, ElementsAre(QStringList{u"Intro"_s}, QStringList{u"Intro"_s, u"Song"_s}));
}

TEST_F(TrackNameWindowTest, HandsOnNothingWhenItIsCancelledByAnyWay)
{
    type(u"Intro"_s);
    button(u"cancelButton"_s)->click();
    EXPECT_FALSE(window.isVisible());
    show();
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    show();
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(names.isVisible());
    EXPECT_THAT(posted, IsEmpty());
    show();
    EXPECT_EQ(editor().text(), u"Intro"_s);
}

TEST_F(TrackNameWindowTest, UndoesTypingTrimmingAndLoadingByTheKeysAndNamesEach)
{
    prompts.expectFile(kNamesFileQuestion, folder.write(u"set.txt"_s, "1. 01 A\n2. 02 B\n"));
    press(QKeySequence::Open);
    EXPECT_EQ(editor().text(), u"01 A\n02 B\n"_s);
    EXPECT_EQ(label(u"note"_s), u"Loaded from “set.txt”."_s);
    press(QKeySequence::SelectAll);
    expectTrim(prompts, {.number = 3, .position = 0});
    press(Qt::ALT | Qt::Key_T);
    EXPECT_TRUE(waitUntil([this] { return names.undoName() == u"Trim Text"_s; })) << "the button goes down and up";
    EXPECT_EQ(editor().text(), u"A\nB\n"_s);
    press(Qt::CTRL | Qt::Key_End);
    type(u"xyz"_s);

    const QPushButton *const undo = button(u"undoButton"_s);
    const QPushButton *const redo = button(u"redoButton"_s);
    EXPECT_EQ(undo->accessibleName(), u"Undo Typing"_s);
    EXPECT_FALSE(redo->isEnabled());
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), u"A\nB\n"_s);
    EXPECT_EQ(undo->toolTip(), u"Undo Trim Text"_s);
    EXPECT_EQ(redo->toolTip(), u"Redo Typing"_s);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), u"01 A\n02 B\n"_s);
    EXPECT_EQ(undo->toolTip(), u"Undo Set Track Name Text"_s);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), QString());
    EXPECT_FALSE(undo->isEnabled());
    press(QKeySequence::Undo);
    press(QKeySequence::Redo);
    press(QKeySequence::Redo);
    press(QKeySequence::Redo);
    EXPECT_EQ(editor().text(), u"A\nB\nxyz"_s);
    EXPECT_FALSE(redo->isEnabled());
}

TEST_F(TrackNameWindowTest, UndoesWithItsButtons)
{
    type(u"A"_s);
    button(u"clearButton"_s)->click();
    EXPECT_EQ(editor().text(), QString());
    EXPECT_FALSE(button(u"clearButton"_s)->isEnabled());
    button(u"undoButton"_s)->click();
    EXPECT_EQ(editor().text(), u"A"_s);
    button(u"redoButton"_s)->click();
    EXPECT_EQ(editor().text(), QString());
}

TEST_F(TrackNameWindowTest, OffersTheStepsByNameInItsContextMenuAndNoOthers)
{
    type(u"A"_s);
    const std::unique_ptr<QMenu> menu(editor().makeMenu());
    QStringList history;
    for (const QAction *const action : menu->actions()) {
        if (action->text().contains(u"ndo"_s) || action->text().contains(u"edo"_s))
            history.append(action->text());
    }
    EXPECT_THAT(history, ElementsAre(u"Undo Typing"_s, u"Redo"_s));
    menu->actions().first()->trigger();
    EXPECT_EQ(editor().text(), QString());
}

TEST_F(TrackNameWindowTest, TrimsTheSelectedLinesOnly)
{
    names.setNames(u"01 A\n02 B\n03 C\n"_s);
    EXPECT_FALSE(button(u"trimButton"_s)->isEnabled()) << "nothing is selected";
    select(5, 4);
    EXPECT_TRUE(button(u"trimButton"_s)->isEnabled());
    expectTrim(prompts, {.number = 2, .position = 1});
    button(u"trimButton"_s)->click();
    EXPECT_EQ(editor().text(), u"01 A\n02\n03 C\n"_s);
    EXPECT_FALSE(button(u"trimButton"_s)->isEnabled());
}

TEST_F(TrackNameWindowTest, LeavesTheKeyboardAtThePlaceOfAChange)
{
    names.setNames(u"A\nB\nC\n"_s);
    EXPECT_EQ(editor().textCursor().position(), 0);
    QTextCursor cursor = editor().textCursor();
    cursor.setPosition(3);
    editor().setTextCursor(cursor);
    type(u"xy"_s);
    press(Qt::CTRL | Qt::Key_Home);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().textCursor().position(), 3);
    press(QKeySequence::Redo);
    EXPECT_EQ(editor().textCursor().position(), 5);
}

TEST_F(TrackNameWindowTest, CountsTheNamesThatThereAreAndTheFilesThatWait)
{
    EXPECT_EQ(label(u"nameCount"_s), u"0 names"_s);
    names.show(3);
    EXPECT_EQ(label(u"nameCount"_s), u"0 names for 3 files"_s);
    type(u"A"_s);
    EXPECT_EQ(label(u"nameCount"_s), u"1 name for 3 files: 2 missing"_s);
}

TEST_F(TrackNameWindowTest, LoadsOneDroppedFile)
{
    const QString list = folder.write(u"set.txt"_s, "1. Intro 2:05\n");
    EXPECT_TRUE(dropOn(&window, {list}));
    EXPECT_TRUE(waitUntil([this] { return editor().text() == u"Intro \n"_s; }));
}

TEST_F(TrackNameWindowTest, LoadsAFileThatIsDroppedOnItsText)
{
    const QString list = folder.write(u"set.txt"_s, "1. Intro 2:05\n");
    EXPECT_TRUE(dropOn(editor().viewport(), {list}));
    EXPECT_TRUE(waitUntil([this] { return editor().text() == u"Intro \n"_s; }));
}

TEST_F(TrackNameWindowTest, RefusesFoldersAndSeveralFiles)
{
    const QString list = folder.write(u"set.txt"_s, "1. Intro\n");
    EXPECT_FALSE(dropOn(&window, {folder.makeFolder(u"folder"_s)}));
    EXPECT_FALSE(dropOn(&window, {list, list}));
    EXPECT_FALSE(dropOn(editor().viewport(), {list, list}));
    handleWaitingEvents();
    EXPECT_EQ(editor().text(), QString());
}

TEST_F(TrackNameWindowTest, SaysWhyADroppedFileCannotBeLoaded)
{
    const QString list = folder.write(u"empty.txt"_s, {});
    prompts.expectAsk({.title = u"The track names in “empty.txt” could not be loaded."_s,
                       .message = u"It is empty."_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    EXPECT_TRUE(dropOn(&window, {list}));
    EXPECT_TRUE(waitUntil([this] { return prompts.unaskedCount() == 0; }));
}

TEST_F(TrackNameWindowTest, PastesAndBreaksLinesSoThatEachLineIsAName)
{
    auto *const pasted = new QMimeData;
    pasted->setText(u"A\r\nB\u2028C\uFDD0D"_s);
    QApplication::clipboard()->setMimeData(pasted);
    press(QKeySequence::Paste);
    press(Qt::SHIFT | Qt::Key_Return);
    type(u"E"_s);
    EXPECT_EQ(names.namesText(), u"A\nB\nC\nD\nE"_s);
    EXPECT_EQ(editor().document()->blockCount(), 5);
    press(QKeySequence::Undo);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), u"A\nB\nC\nD"_s);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), QString());
}

TEST_F(TrackNameWindowTest, KeepsEveryCharacterThatAFileMayHold)
{
    const QString odd = u"a\u0001b\u00a0\u202E\uFFFC\uFEFF\U0001F3B8\n"_s;
    names.setNames(odd);
    EXPECT_EQ(editor().text(), odd);
    names.setNames(u"a\uFDD0b\uFDD1c"_s);
    EXPECT_EQ(names.namesText(), u"a\nb\nc"_s);
    EXPECT_EQ(editor().text(), u"a\nb\nc"_s);
    names.undo();
    EXPECT_EQ(editor().text(), odd);
}

TEST_F(TrackNameWindowTest, TellsAScreenReaderWhatEverythingIs)
{
    EXPECT_EQ(editor().accessibleName(), u"Track names"_s);
    for (const QPushButton *const each : window.findChildren<QPushButton *>())
        EXPECT_FALSE(each->accessibleName().isEmpty()) << qPrintable(each->objectName());
}

TEST_F(TrackNameWindowTest, LeadsTheKeyboardFromTheTextThroughEveryButton)
{
    type(u"A"_s);
    press(QKeySequence::SelectAll);
    QStringList stops;
    do {
        stops.append(window.focusWidget()->objectName());
        press(Qt::Key_Tab);
    } while (!editor().hasFocus() && stops.size() < 20);
    EXPECT_EQ(stops.first(), u"trackNames"_s);
    stops.sort();
    EXPECT_THAT(stops, ElementsAre(u"cancelButton"_s, u"clearButton"_s, u"loadButton"_s, u"okButton"_s, u"trackNames"_s,
                                   u"trimButton"_s, u"undoButton"_s));
}

TEST_F(TrackNameWindowTest, GivesEachMnemonicToOne)
{
    QStringList mnemonics;
    for (const QPushButton *const each : window.findChildren<QPushButton *>())
        mnemonics.append(QKeySequence::mnemonic(each->text()).toString());
    for (const QLabel *const each : window.findChildren<QLabel *>()) {
        if (each->buddy() != nullptr)
            mnemonics.append(QKeySequence::mnemonic(each->text()).toString());
    }
    EXPECT_EQ(mnemonics.size(), 8);
    EXPECT_EQ(mnemonics.removeDuplicates(), 0);
    EXPECT_FALSE(mnemonics.contains(QString()));
}

TEST_F(TrackNameWindowTest, ElidesANoteThatIsTooLongAndTellsTheWholeInItsHint)
{
    const QString name = QString(200, u'n') + u".txt"_s;
    const int width = window.width();
    names.loadTrackNames(folder.write(name, "1. A\n"));
    handleWaitingEvents();
    EXPECT_EQ(window.width(), width);
    EXPECT_TRUE(label(u"note"_s).contains(u'…'));
    EXPECT_EQ(window.findChild<QLabel *>(u"note"_s)->toolTip(), u"Loaded from “%1”."_s.arg(name));
}

TEST_F(TrackNameWindowTest, HoldsAHundredThousandNames)
{
    names.loadTrackNames(folder.write(u"set.txt"_s, QByteArray("1. Name\n").repeated(100'000)));
    EXPECT_EQ(label(u"nameCount"_s), u"100,000 names"_s);
    press(Qt::CTRL | Qt::Key_End);
    type(u"x"_s);
    EXPECT_EQ(editor().text(), u"Name\n"_s.repeated(100'000) + u'x');
    press(QKeySequence::Undo);
    press(QKeySequence::Undo);
    EXPECT_EQ(editor().text(), QString());
}

TEST(TrimPanelDialog, TakesTheNumberAtTheStartOfWhatIsTyped)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    DesktopPrompts prompts;
    NURVTrimCharsPanel panel(prompts);
    const auto run = [&panel](const QString &typed, Qt::Key end) {
        WhenOpen<PanelDialog> user([&](PanelDialog &dialog) {
            auto *const box = dialog.findChild<QSpinBox *>(u"number"_s);
            EXPECT_TRUE(box->hasFocus());
            box->selectAll();
            QTest::keyClicks(box, typed);
            QTest::keyClick(box, end);
        });
        return panel.runPanel();
    };
    EXPECT_EQ(run(u"3 or so"_s, Qt::Key_Return), (TrimCharsObject{.number = 3, .position = 0}));
    EXPECT_EQ(run(u"three"_s, Qt::Key_Return), TrimCharsObject());
    EXPECT_EQ(run(u"12"_s, Qt::Key_Escape), std::nullopt);
}

TEST(TrackNamesInTheMainWindow, AreShownForTheToolThatAsks)
{
    WindowFixture fixture;
    fixture.show();
    const TrackNameWindow *const window = fixture.window.trackNameWindow();
    EXPECT_FALSE(window->isVisible());
    fixture.controller.trackNameInputController().show(11);
    EXPECT_TRUE(window->isVisible());
    fixture.window.prepareToQuit();
    EXPECT_FALSE(window->isVisible());
}

TEST(TrackNamesInTheMainWindow, StandWhereTheyStoodBefore)
{
    QSize size;
    {
        WindowFixture fixture;
        fixture.show();
        fixture.controller.trackNameInputController().show();
        fixture.window.trackNameWindow()->resize(640, 555);
        handleWaitingEvents();
        size = fixture.window.trackNameWindow()->size();
        fixture.window.saveState();
    }
    const WindowFixture fixture;
    EXPECT_EQ(fixture.window.trackNameWindow()->size(), size);
}

} // namespace nurv::test
