// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PanelDialog.h"

#include "app/ExamplePanels.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"
#include "ui/DesktopPrompts.h"
#include "ui/WhenOpen.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace nurv::test {

namespace {

using User = WhenOpen<PanelDialog>;

QPushButton *buttonOf(const PanelDialog &dialog, const QString &title)
{
    for (QPushButton *const button : dialog.findChildren<QPushButton *>()) {
        if (button->text() == title)
            return button;
    }
    ADD_FAILURE() << "no button " << qPrintable(title);
    return nullptr;
}

QString objectionOf(const PanelDialog &dialog)
{
    return dialog.findChild<QLabel *>(u"objection"_s)->text();
}

/// Where the keyboard is, or goes as soon as the open dialog has it: it follows a while after the window.
QWidget *keyboardPlace()
{
    const QWidget *const dialog = QApplication::activeModalWidget();
    return dialog != nullptr && dialog->focusWidget() != nullptr ? dialog->focusWidget() : QApplication::focusWidget();
}

/// Types there.
void type(const QString &text)
{
    QTest::keyClicks(keyboardPlace(), text);
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(keyboardPlace(), key, modifiers);
}

/// What a user can reach with the keyboard, from the field that has it first.
QStringList stopsOf(const QDialog &dialog)
{
    QStringList stops;
    QWidget *const first = dialog.focusWidget();
    QWidget *widget = first;
    do {
        const bool isPart = widget->objectName().startsWith(u"qt_"_s);
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible() && !isPart)
            stops.append(widget->objectName());
        widget = widget->nextInFocusChain();
    } while (widget != first);
    return stops;
}

class PanelDialogTest : public ::testing::Test {
protected:
    PanelDialogTest() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    TestFolder folder;
    DesktopPrompts prompts;
};

} // namespace

TEST_F(PanelDialogTest, AsksForALineOfTextAndSaysInWordsWhyItIsNotAccepted)
{
    PrefixPanel example;
    User user([&](PanelDialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Batch Rename"_s);
        EXPECT_EQ(dialog.findChild<QLabel *>(u"message"_s)->text(),
                  u"Enter the Prefix that you want the files to start with:"_s);
        QPushButton *const ok = buttonOf(dialog, u"OK"_s);
        EXPECT_FALSE(ok->isEnabled());
        EXPECT_EQ(objectionOf(dialog), u"Type what the names are to start with."_s);
        press(Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible()) << "Return must not accept what is objected to";
        type(u"a/"_s);
        EXPECT_EQ(objectionOf(dialog), u"A prefix with a slash would name a folder."_s);
        EXPECT_EQ(ok->accessibleDescription(), objectionOf(dialog));
        press(Qt::Key_Backspace);
        EXPECT_EQ(objectionOf(dialog), QString());
        EXPECT_TRUE(ok->isEnabled());
        press(Qt::Key_Return);
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.prefix.text(), u"a"_s);
}

TEST_F(PanelDialogTest, EscapeAndItsCloseButtonDismissIt)
{
    PrefixPanel example;
    example.prefix.setText(u"old"_s);
    {
        User user([](PanelDialog &) {
            EXPECT_EQ(qobject_cast<QLineEdit *>(QApplication::focusWidget())->selectedText(), u"old"_s);
            type(u"new"_s);
            press(Qt::Key_Escape);
        });
        EXPECT_FALSE(prompts.runPanel(example.panel()));
        EXPECT_EQ(example.prefix.text(), u"new"_s) << "what was typed stays in the control";
    }
    User user([](PanelDialog &dialog) { dialog.close(); });
    EXPECT_FALSE(prompts.runPanel(example.panel()));
}

TEST_F(PanelDialogTest, ANumberIsTheOneAtTheStartOfWhatIsTyped)
{
    TrimPanel example;
    example.number.setIntegerValue(7);
    User user([&](PanelDialog &dialog) {
        auto *const box = dialog.findChild<QSpinBox *>(u"number"_s);
        EXPECT_TRUE(box->hasFocus());
        EXPECT_EQ(box->text(), u"7"_s);
        box->selectAll();
        type(u"x"_s);
        EXPECT_EQ(example.number.integerValue(), 0);
        box->selectAll();
        type(u"12b"_s);
        EXPECT_EQ(example.number.integerValue(), 12);
        type(u"3"_s);
        EXPECT_EQ(example.number.integerValue(), 12);
        box->selectAll();
        type(u"100"_s);
        EXPECT_EQ(example.number.integerValue(), 10) << "a hundred is too many";
        press(Qt::Key_Up);
        EXPECT_EQ(example.number.integerValue(), 11);
        press(Qt::Key_Return);
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.number.integerValue(), 11);
}

TEST_F(PanelDialogTest, AMnemonicLeadsToTheChosenCellAndArrowsChooseAnother)
{
    TrimPanel example;
    example.position.setSelectedIndex(1);
    User user([&](PanelDialog &dialog) {
        press(Qt::Key_F, Qt::AltModifier);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), u"position.1"_s);
        EXPECT_EQ(example.position.selectedIndex(), 1) << "coming there chooses nothing";
        press(Qt::Key_Left);
        EXPECT_EQ(example.position.selectedIndex(), 0);
        press(Qt::Key_N, Qt::AltModifier);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), u"number"_s);
        dialog.accept();
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.position.selectedColumn(), 0);
}

TEST_F(PanelDialogTest, EightRowsOfNameAndValueAreFilledByTheKeyboardAlone)
{
    CustomTagsPanel example;
    example.tags.setPair(0, {.name = u"TAPER"_s, .value = {}});
    User user([&](PanelDialog &dialog) {
        EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Name 1"_s);
        press(Qt::Key_Tab);
        type(u"Anna"_s);
        press(Qt::Key_Tab);
        press(Qt::Key_Tab);
        type(u"SBD"_s);
        EXPECT_EQ(objectionOf(dialog), u"Row 2 has a value without a name."_s);
        EXPECT_FALSE(buttonOf(dialog, u"Done"_s)->isEnabled());
        press(Qt::Key_Backtab);
        type(u"SOURCE"_s);
        for (int stop = 0; stop < 13; ++stop)
            press(Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Value 8"_s);
        press(Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), buttonOf(dialog, u"Done"_s));
        press(Qt::Key_Return);
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.tags.pairs().first(2),
              (QList<PairsControl::Pair>{{u"TAPER"_s, u"Anna"_s}, {u"SOURCE"_s, u"SBD"_s}}));
}

TEST_F(PanelDialogTest, EscapeAcceptsAPanelThatCannotBeDismissedUnlessAFieldObjects)
{
    CustomTagsPanel example;
    {
        User user([](PanelDialog &) { press(Qt::Key_Escape); });
        EXPECT_TRUE(prompts.runPanel(example.panel()));
    }
    example.tags.setPair(3, {.name = {}, .value = u"x"_s});
    User user([](PanelDialog &) { press(Qt::Key_Escape); });
    EXPECT_FALSE(prompts.runPanel(example.panel()));
}

TEST_F(PanelDialogTest, TrackNamesAreTypedALineEach)
{
    NamesPanel example(prompts);
    User user([&](PanelDialog &dialog) {
        type(u"Intro"_s);
        press(Qt::Key_Return);
        type(u"Song\u00a0two"_s);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(example.names.text(), u"Intro\nSong\u00a0two"_s);
        press(Qt::Key_Tab);
        EXPECT_NE(QApplication::focusWidget()->objectName(), u"names"_s) << "a tab is no part of a name";
        press(Qt::Key_N, Qt::AltModifier);
        press(Qt::Key_Return, Qt::ControlModifier);
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_THAT(example.names.lines(), ElementsAre(u"Intro"_s, u"Song\u00a0two"_s));
}

TEST_F(PanelDialogTest, WhatAButtonPutsIntoTheTextIsOneStepThatCanBeUndone)
{
    const QString file = folder.write(u"names.txt"_s, "01 A\n02 B\n03 C\n");
    NamesPanel example(prompts);
    example.names.setText(u"before"_s);
    User user([&](PanelDialog &dialog) {
        auto *const editor = dialog.findChild<QPlainTextEdit *>(u"names"_s);
        EXPECT_FALSE(editor->document()->isUndoAvailable());
        {
            WhenOpen<QFileDialog> chooser([&](QFileDialog &files) {
                EXPECT_EQ(files.nameFilters(), QStringList{u"TXT files (*.txt *.TXT)"_s});
                files.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(file);
                QMetaObject::invokeMethod(&files, "accept");
            });
            buttonOf(dialog, u"&Load…"_s)->click();
        }
        EXPECT_EQ(editor->toPlainText(), u"01 A\n02 B\n03 C\n"_s);
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(0);
        cursor.setPosition(9, QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
        {
            User trimmer([](PanelDialog &trim) {
                EXPECT_EQ(trim.windowTitle(), u"Remove Characters"_s);
                type(u"3"_s);
                press(Qt::Key_Return);
            });
            buttonOf(dialog, u"&Remove Characters…"_s)->click();
        }
        EXPECT_EQ(editor->toPlainText(), u"A\nB\n03 C\n"_s);
        EXPECT_EQ(example.names.text(), editor->toPlainText());
        editor->undo();
        EXPECT_EQ(example.names.text(), u"01 A\n02 B\n03 C\n"_s);
        editor->undo();
        EXPECT_EQ(example.names.text(), u"before"_s);
        editor->redo();
        dialog.accept();
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
    EXPECT_EQ(example.names.text(), u"01 A\n02 B\n03 C\n"_s);
}

TEST_F(PanelDialogTest, ShowsWhyAButtonThatStaysHasFailed)
{
    NamesPanel example(prompts);
    Panel panel = example.panel();
    panel.buttons.at(0).action = [] { throw std::runtime_error("the file cannot be read"); };
    User user([](PanelDialog &dialog) {
        buttonOf(dialog, u"&Load…"_s)->click();
        EXPECT_EQ(objectionOf(dialog), u"the file cannot be read"_s);
        dialog.reject();
    });
    EXPECT_FALSE(prompts.runPanel(panel));
}

TEST_F(PanelDialogTest, BindsTheOtherKindsOfControlsToo)
{
    OptionsPanel example;
    User user([&](PanelDialog &dialog) {
        EXPECT_EQ(dialog.findChild<QLabel *>(u"advice"_s)->text(), u"Only what is switched on counts."_s);
        press(Qt::Key_S, Qt::AltModifier);
        EXPECT_TRUE(waitUntil([&] { return example.isOn.isOn(); }));
        press(Qt::Key_L, Qt::AltModifier);
        press(Qt::Key_Right);
        EXPECT_EQ(example.level.integerValue(), 6);
        EXPECT_EQ(dialog.findChild<QLabel *>(u"levelValue"_s)->text(), u"6"_s);
        example.advice.setHidden(true);
        EXPECT_TRUE(dialog.findChild<QLabel *>(u"advice"_s)->isHidden());
        dialog.accept();
    });
    EXPECT_TRUE(prompts.runPanel(example.panel()));
}

TEST_F(PanelDialogTest, TheKeyboardGoesFromFieldToFieldAndThenAlongTheButtons)
{
    TrimPanel example;
    User user([](PanelDialog &dialog) {
        QStringList stops = stopsOf(dialog);
        QList<int> places;
        while (stops.size() > 2)
            places.prepend(dialog.findChild<QPushButton *>(stops.takeLast())->x());
        EXPECT_THAT(stops, ElementsAre(u"number"_s, u"position.0"_s));
        EXPECT_EQ(places.size(), 2);
        EXPECT_TRUE(std::is_sorted(places.begin(), places.end())) << "from left to right";
        dialog.reject();
    });
    EXPECT_FALSE(prompts.runPanel(example.panel()));
}

TEST_F(PanelDialogTest, EveryWidgetHasNamesAndNoTwoTheSameMnemonic)
{
    PrefixPanel prefix;
    TrimPanel trim;
    CustomTagsPanel tags;
    NamesPanel names(prompts);
    OptionsPanel options;
    for (const Panel &panel : {prefix.panel(), trim.panel(), tags.panel(), names.panel(), options.panel()}) {
        const PanelDialog dialog(panel, nullptr);
        QStringList mnemonics;
        for (const QWidget *const widget : dialog.findChildren<QWidget *>()) {
            const QVariant text = widget->property("text");
            const bool isTyped = qobject_cast<const QLineEdit *>(widget) != nullptr;
            if (const QKeySequence key = QKeySequence::mnemonic(text.toString()); !isTyped && !key.isEmpty())
                mnemonics.append(key.toString());
            const bool isPart = widget->objectName().startsWith(u"qt_"_s);
            if ((widget->focusPolicy() & Qt::TabFocus) == 0 || isPart)
                continue;
            EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << qPrintable(widget->objectName());
        }
        const qsizetype count = mnemonics.size();
        mnemonics.removeDuplicates();
        EXPECT_EQ(mnemonics.size(), count) << qPrintable(panel.title);
    }
}

TEST_F(PanelDialogTest, WhatHasManyRowsGrowsWithTheDialog)
{
    NamesPanel names(prompts);
    CustomTagsPanel tags;
    for (const Panel &panel : {names.panel(), tags.panel()}) {
        PanelDialog dialog(panel, nullptr);
        dialog.show();
        const QWidget *const field = dialog.findChild<QWidget *>(panel.fields.at(0).name);
        const int before = field->height();
        dialog.resize(dialog.width() + 100, dialog.height() + 150);
        QApplication::processEvents();
        EXPECT_GE(field->height(), before + 140) << qPrintable(panel.title);
        // And it fits on a small screen.
        EXPECT_LT(dialog.minimumSizeHint().height(), 400) << qPrintable(panel.title);
    }
}

TEST_F(PanelDialogTest, ShowsTextsAsTheyAre)
{
    PrefixPanel example;
    Panel panel = example.panel();
    panel.message = u"<b>of</b> gnp\u202Ewav"_s;
    const PanelDialog dialog(panel, nullptr);
    const auto *const message = dialog.findChild<QLabel *>(u"message"_s);
    EXPECT_EQ(message->textFormat(), Qt::PlainText);
    EXPECT_EQ(message->text(), u"<b>of</b> gnp\\u{202E}wav"_s);
    EXPECT_EQ(dialog.findChild<QLabel *>(u"objection"_s)->textFormat(), Qt::PlainText);
}

} // namespace nurv::test
