// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/OptionWidgets.h"

#include "app/ComboControl.h"
#include "app/Control.h"
#include "ui/Bindings.h"
#include "ui/LevelBox.h"
#include "ui/RadioMatrix.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A row of the column, hidden and shown as one.
struct OptionRow {
    OptionRow(QVBoxLayout *column, QWidget *parent) : widget(new QWidget(parent)), layout(new QHBoxLayout(widget))
    {
        layout->setContentsMargins(0, 0, 0, 0);
        column->addWidget(widget);
    }

    QWidget *widget;
    QHBoxLayout *layout;
};

QLabel *addCaption(const OptionRow &row, const QString &caption, Control &control)
{
    auto *const label = new QLabel(caption, row.widget);
    row.layout->addWidget(label);
    follow(label, control);
    return label;
}

void name(QWidget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    widget->setToolTip(accessibleName);
}

QComboBox *addBoxWithUnit(const OptionRow &row, Control &control, const QString &caption, const QString &unit,
                          const QString &objectName, const QString &accessibleName)
{
    auto *const box = new QComboBox(row.widget);
    name(box, objectName, accessibleName);
    addCaption(row, caption, control)->setBuddy(box);
    row.layout->addWidget(box);
    auto *const unitLabel = new QLabel(unit, row.widget);
    follow(unitLabel, control);
    row.layout->addWidget(unitLabel);
    row.layout->addStretch(1);
    return box;
}

/// The room that any value needs: the row must not move while another one shows.
int widestValue(const QLabel &label, const SliderControl &control, const std::function<QString(int)> &words)
{
    int widest = 0;
    for (int value = control.minimum(); value <= control.maximum(); value += control.step()) {
        const QString text = words ? words(value) : QString::number(value);
        widest = std::max(widest, label.fontMetrics().horizontalAdvance(text));
    }
    return widest;
}

} // namespace

QWidget *addCheckBox(QVBoxLayout *column, CheckControl &control, const QString &title, const QString &objectName,
                     const QString &toolTip, QWidget *parent)
{
    auto *const box = new QCheckBox(title, parent);
    box->setObjectName(objectName);
    box->setToolTip(toolTip);
    box->setAccessibleName(QString(title).remove(u'&'));
    box->setAccessibleDescription(toolTip);
    column->addWidget(box);
    bind(box, control);
    return box;
}

QWidget *addSlider(QVBoxLayout *column, SliderControl &control, const QString &caption, const QString &objectName,
                   const QString &accessibleName, QWidget *parent, const std::function<QString(int)> &words)
{
    const OptionRow row(column, parent);
    QLabel *const captionLabel = addCaption(row, caption, control);
    auto *const slider = new QSlider(Qt::Horizontal, row.widget);
    name(slider, objectName, accessibleName);
    slider->setTickPosition(QSlider::TicksBelow);
    captionLabel->setBuddy(slider);
    auto *const value = new QLabel(row.widget);
    value->setObjectName(objectName + u"Value"_s);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setMinimumWidth(widestValue(*value, control, words));
    row.layout->addWidget(slider, 1);
    row.layout->addWidget(value);
    bind(slider, value, control, words);
    return row.widget;
}

QWidget *addChoice(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &objectName,
                   const QString &accessibleName, QWidget *parent)
{
    const OptionRow row(column, parent);
    if (!caption.isEmpty())
        addCaption(row, caption, control);
    auto *const matrix = new RadioMatrix(row.widget);
    name(matrix, objectName, accessibleName);
    row.layout->addWidget(matrix, 1);
    bind(matrix, control);
    return row.widget;
}

QWidget *addStepper(QVBoxLayout *column, StepperControl &control, const QString &caption, const QString &objectName,
                    const QString &accessibleName, QWidget *parent)
{
    const OptionRow row(column, parent);
    QLabel *const captionLabel = addCaption(row, caption, control);
    auto *const box = new LevelBox(row.widget);
    name(box, objectName, accessibleName);
    captionLabel->setBuddy(box);
    row.layout->addWidget(box);
    row.layout->addStretch(1);
    bind(box, control);
    return row.widget;
}

QWidget *addDropDown(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &unit,
                     const QString &objectName, const QString &accessibleName, QWidget *parent)
{
    const OptionRow row(column, parent);
    bind(addBoxWithUnit(row, control, caption, unit, objectName, accessibleName), control);
    return row.widget;
}

QWidget *addCombo(QVBoxLayout *column, ComboControl &control, const QString &caption, const QString &unit,
                  const QString &objectName, const QString &accessibleName, QWidget *parent)
{
    const OptionRow row(column, parent);
    QComboBox *const box = addBoxWithUnit(row, control, caption, unit, objectName, accessibleName);
    bind(box, control);
    name(box->lineEdit(), objectName + u"Field"_s, accessibleName);
    return row.widget;
}

} // namespace nurv
