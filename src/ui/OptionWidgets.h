// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

class QVBoxLayout;
class QWidget;

namespace nurv {

class CheckControl;
class ChoiceControl;
class ComboControl;
class SliderControl;
class StepperControl;

// Each adds one bound row of options to a column, with its caption, object name, tool tip and accessible name, and
// returns the whole row. `parent` owns the widgets.

QWidget *addCheckBox(QVBoxLayout *column, CheckControl &control, const QString &title, const QString &objectName,
                     const QString &toolTip, QWidget *parent);
/// Caption, slider and the value: a number, or what `words` makes of it.
QWidget *addSlider(QVBoxLayout *column, SliderControl &control, const QString &caption, const QString &objectName,
                   const QString &accessibleName, QWidget *parent, const std::function<QString(int)> &words = {});
/// Caption and a matrix of radio buttons.
QWidget *addChoice(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &objectName,
                   const QString &accessibleName, QWidget *parent);

/// Caption and a field for a number that steps.
QWidget *addStepper(QVBoxLayout *column, StepperControl &control, const QString &caption, const QString &objectName,
                    const QString &accessibleName, QWidget *parent);
/// Caption, a list of the titles that drops down, and the unit.
QWidget *addDropDown(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &unit,
                     const QString &objectName, const QString &accessibleName, QWidget *parent);
/// The same with a field that takes other numbers, too.
QWidget *addCombo(QVBoxLayout *column, ComboControl &control, const QString &caption, const QString &unit,
                  const QString &objectName, const QString &accessibleName, QWidget *parent);

} // namespace nurv
