// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QWidget;

namespace nurv {

class CheckControl;
class ChoiceControl;
class Control;
class LabelControl;
class RadioMatrix;
class SliderControl;

// Each function shows the control's state in the widget, now and after every
// change, and hands what the user does to the control. The widget is enabled and
// visible as the control says. The control must outlive the widget.

void bind(QCheckBox *box, CheckControl &control);
/// Fills the matrix with one radio button per title of the control. `shownTitles`
/// replace the control's own titles on the screen when they are given.
void bind(RadioMatrix *matrix, ChoiceControl &control, const QStringList &shownTitles = {});
/// Fills the box with the titles of the control.
void bind(QComboBox *box, ChoiceControl &control);
/// `valueLabel`, when given, shows the value as a number.
void bind(QSlider *slider, QLabel *valueLabel, SliderControl &control);
void bind(QLabel *label, LabelControl &control);

/// The enabled and hidden state only: for captions and frames that belong to a control.
void follow(QWidget *widget, Control &control);

} // namespace nurv
