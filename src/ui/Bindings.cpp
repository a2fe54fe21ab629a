// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Bindings.h"

#include "app/ComboControl.h"
#include "app/Control.h"
#include "app/LinesControl.h"
#include "app/PairsControl.h"
#include "app/TextControl.h"
#include "ui/PairsEditor.h"
#include "ui/RadioMatrix.h"

#include <QCheckBox>
#include <QComboBox>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QTextCursor>
#include <QTextDocument>

namespace nurv {

namespace {

/// No bit rate has more digits.
constexpr int kMostTypedNumber = 9999;

/// Puts the control's last number back into a field that is left without one.
class TypedNumber final : public QIntValidator {
public:
    TypedNumber(const ComboControl &control, QObject *parent) : QIntValidator(1, kMostTypedNumber, parent), m_control(control) {}
    void fixup(QString &text) const override { text = m_control.text(); }

private:
    const ComboControl &m_control;
};

/// Runs `show` now and after every change of the control, as long as the widget lives.
template<typename Show>
void showAlways(QWidget *widget, Control &control, const Show &show)
{
    show();
    QObject::connect(&control, &Control::valueChanged, widget, show);
}

/// Leaves the keyboard's place alone where the text is right already.
void showText(QLineEdit *field, const QString &text)
{
    const QSignalBlocker blocker(field);
    if (field->text() != text)
        field->setText(text);
}

/// Unlike the plain text it keeps non-breaking blanks.
QString textOf(const QPlainTextEdit &editor)
{
    return withLineFeeds(editor.document()->toRawText());
}

/// A field cuts off what is longer than it takes, and at first it takes 32,767 letters.
void allowLongTexts(QLineEdit *field)
{
    constexpr int kLongestText = 16 * 1024 * 1024;
    field->setMaxLength(kLongestText);
}

} // namespace

void follow(QWidget *widget, Control &control)
{
    const auto show = [widget, &control] {
        widget->setEnabled(control.isEnabled());
        widget->setVisible(!control.isHidden());
    };
    show();
    QObject::connect(&control, &Control::changed, widget, show);
}

void showWhileEnabled(QWidget *widget, Control &control)
{
    const auto show = [widget, &control] { widget->setVisible(control.isEnabled() && !control.isHidden()); };
    show();
    QObject::connect(&control, &Control::changed, widget, show);
}

void bind(QCheckBox *box, CheckControl &control)
{
    showAlways(box, control, [box, &control] {
        const QSignalBlocker blocker(box);
        box->setChecked(control.isOn());
    });
    QObject::connect(box, &QCheckBox::toggled, &control, [&control](bool on) { control.setOn(on); });
    follow(box, control);
}

void bind(RadioMatrix *matrix, ChoiceControl &control, const QStringList &shownTitles)
{
    matrix->setCells(shownTitles.isEmpty() ? control.titles() : shownTitles, control.columns());
    showAlways(matrix, control, [matrix, &control] { matrix->setSelectedIndex(control.selectedIndex()); });
    QObject::connect(matrix, &RadioMatrix::cellChosen, &control,
                     [&control](int index) { control.setSelectedIndex(index); });
    follow(matrix, control);
}

void bind(QComboBox *box, ChoiceControl &control)
{
    {
        const QSignalBlocker blocker(box);
        box->clear();
        box->addItems(control.titles());
    }
    showAlways(box, control, [box, &control] {
        const QSignalBlocker blocker(box);
        const int index = control.selectedIndex();
        box->setCurrentIndex(index >= 0 && index < box->count() ? index : -1);
    });
    QObject::connect(box, &QComboBox::activated, &control, [&control](int index) { control.setSelectedIndex(index); });
    follow(box, control);
}

void bind(QComboBox *box, ComboControl &control)
{
    {
        const QSignalBlocker blocker(box);
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        // What is typed is what is meant: 12 is not the beginning of 128.
        box->setCompleter(nullptr);
        box->setValidator(new TypedNumber(control, box));
        box->clear();
        for (const int item : control.items())
            box->addItem(QString::number(item));
    }
    showAlways(box, control, [box, &control] {
        const QSignalBlocker blocker(box);
        if (box->currentText() == control.text())
            return;
        // Keys and wheel go on from here.
        box->setCurrentIndex(box->findText(control.text()));
        box->setEditText(control.text());
    });
    QObject::connect(box, &QComboBox::currentTextChanged, &control,
                     [&control](const QString &text) { control.setText(text); });
    follow(box, control);
}

void bind(QSlider *slider, QLabel *valueLabel, SliderControl &control, const std::function<QString(int)> &words)
{
    slider->setRange(control.minimum(), control.maximum());
    slider->setSingleStep(control.step());
    slider->setPageStep(control.step());
    slider->setTickInterval(control.step());
    showAlways(slider, control, [slider, valueLabel, &control, words] {
        const QSignalBlocker blocker(slider);
        slider->setValue(control.integerValue());
        if (valueLabel != nullptr)
            valueLabel->setText(words ? words(control.integerValue()) : control.stringValue());
    });
    QObject::connect(slider, &QSlider::valueChanged, &control, [slider, &control](int value) {
        control.setIntegerValue(value);
        // The control keeps to its steps; a handle dragged between two of them
        // has to show where the value is.
        const QSignalBlocker blocker(slider);
        slider->setValue(control.integerValue());
    });
    follow(slider, control);
    if (valueLabel != nullptr)
        follow(valueLabel, control);
}

void bind(QSpinBox *box, StepperControl &control)
{
    box->setRange(control.minimum(), control.maximum());
    box->setSingleStep(control.step());
    showAlways(box, control, [box, &control] {
        const QSignalBlocker blocker(box);
        if (box->value() != control.integerValue())
            box->setValue(control.integerValue());
    });
    QObject::connect(box, &QSpinBox::valueChanged, &control, [&control](int value) { control.setIntegerValue(value); });
    follow(box, control);
}

void bind(QLabel *label, LabelControl &control)
{
    showAlways(label, control, [label, &control] { label->setText(control.text()); });
    follow(label, control);
}

void bind(QLineEdit *field, TextControl &control)
{
    allowLongTexts(field);
    showAlways(field, control, [field, &control] { showText(field, control.text()); });
    const auto showPlaceholder = [field, &control] { field->setPlaceholderText(control.placeholder()); };
    showPlaceholder();
    QObject::connect(&control, &Control::changed, field, showPlaceholder);
    QObject::connect(field, &QLineEdit::textEdited, &control, [&control](const QString &text) { control.setText(text); });
    follow(field, control);
}

void bind(QPlainTextEdit *editor, LinesControl &control)
{
    editor->setReadOnly(control.isReadOnly());
    showAlways(editor, control, [editor, &control] {
        if (textOf(*editor) == control.text())
            return;
        QTextCursor whole(editor->document());
        whole.select(QTextCursor::Document);
        whole.insertText(control.text());
    });
    // What was there before the user came cannot be undone.
    editor->document()->clearUndoRedoStacks();
    QObject::connect(editor, &QPlainTextEdit::textChanged, &control,
                     [editor, &control] { control.setText(textOf(*editor)); });
    QObject::connect(editor, &QPlainTextEdit::selectionChanged, &control, [editor, &control] {
        const QTextCursor cursor = editor->textCursor();
        control.setSelection(cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart());
    });
    follow(editor, control);
}

void bind(PairsEditor *editor, PairsControl &control)
{
    for (int row = 0; row < editor->rowCount(); ++row) {
        allowLongTexts(editor->nameField(row));
        allowLongTexts(editor->valueField(row));
    }
    showAlways(editor, control, [editor, &control] {
        for (int row = 0; row < editor->rowCount(); ++row) {
            showText(editor->nameField(row), control.pairs().at(row).name);
            showText(editor->valueField(row), control.pairs().at(row).value);
        }
    });
    QObject::connect(editor, &PairsEditor::rowEdited, &control, [editor, &control](int row) {
        control.setPair(row, {.name = editor->nameField(row)->text(), .value = editor->valueField(row)->text()});
    });
    follow(editor, control);
}

} // namespace nurv
