// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSlider;
class QSpinBox;
class QWidget;

namespace nurv {

class CheckControl;
class ChoiceControl;
class ComboControl;
class Control;
class LabelControl;
class LinesControl;
class PairsControl;
class PairsEditor;
class RadioMatrix;
class SliderControl;
class StepperControl;
class TextControl;

// Each function shows the control's state in the widget, now and after every
// change, and hands what the user does to the control. The widget is enabled and
// visible as the control says. The control must outlive the widget.

void bind(QCheckBox *box, CheckControl &control);
/// Fills the matrix with one radio button per title of the control. `shownTitles`
/// replace the control's own titles on the screen when they are given.
void bind(RadioMatrix *matrix, ChoiceControl &control, const QStringList &shownTitles = {});
/// Fills the box with the titles of the control.
void bind(QComboBox *box, ChoiceControl &control);
/// Fills the box with the usual numbers; others may be typed.
void bind(QComboBox *box, ComboControl &control);
/// `valueLabel`, when given, shows the value: as a number, or as `words` has it.
void bind(QSlider *slider, QLabel *valueLabel, SliderControl &control, const std::function<QString(int)> &words = {});
void bind(QSpinBox *box, StepperControl &control);
void bind(QLabel *label, LabelControl &control);
void bind(QLineEdit *field, TextControl &control);
/// A text that the control is given becomes one step of the editor's undo list; the control
/// knows what the user has selected.
void bind(QPlainTextEdit *editor, LinesControl &control);
/// The editor has as many rows as the control.
void bind(PairsEditor *editor, PairsControl &control);

/// The enabled and hidden state only: for captions and frames that belong to a control.
void follow(QWidget *widget, Control &control);
/// Visible while the control is enabled: for what means nothing under another choice.
void showWhileEnabled(QWidget *widget, Control &control);

} // namespace nurv
