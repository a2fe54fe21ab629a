// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Bindings.h"

#include "app/Control.h"
#include "ui/RadioMatrix.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace nurv {

namespace {

/// Runs `show` now and after every change of the control, as long as the widget lives.
template<typename Show>
void showAlways(QWidget *widget, Control &control, const Show &show)
{
    show();
    QObject::connect(&control, &Control::valueChanged, widget, show);
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

void bind(QSlider *slider, QLabel *valueLabel, SliderControl &control)
{
    slider->setRange(control.minimum(), control.maximum());
    slider->setSingleStep(control.step());
    slider->setPageStep(control.step());
    slider->setTickInterval(control.step());
    showAlways(slider, control, [slider, valueLabel, &control] {
        const QSignalBlocker blocker(slider);
        slider->setValue(control.integerValue());
        if (valueLabel != nullptr)
            valueLabel->setText(control.stringValue());
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

void bind(QLabel *label, LabelControl &control)
{
    showAlways(label, control, [label, &control] { label->setText(control.text()); });
    follow(label, control);
}

} // namespace nurv
