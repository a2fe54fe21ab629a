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

QLabel *addCaption(QHBoxLayout *row, const QString &caption, Control &control, QWidget *parent)
{
    auto *const label = new QLabel(caption, parent);
    row->addWidget(label);
    follow(label, control);
    return label;
}

void name(QWidget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    widget->setToolTip(accessibleName);
}

void addBoxWithUnit(QVBoxLayout *column, QComboBox *box, Control &control, const QString &caption, const QString &unit,
                    QWidget *parent)
{
    auto *const row = new QHBoxLayout;
    addCaption(row, caption, control, parent)->setBuddy(box);
    row->addWidget(box);
    auto *const unitLabel = new QLabel(unit, parent);
    follow(unitLabel, control);
    row->addWidget(unitLabel);
    row->addStretch(1);
    column->addLayout(row);
}

} // namespace

void addCheckBox(QVBoxLayout *column, CheckControl &control, const QString &title, const QString &objectName,
                 const QString &toolTip, QWidget *parent)
{
    auto *const box = new QCheckBox(title, parent);
    box->setObjectName(objectName);
    box->setToolTip(toolTip);
    box->setAccessibleName(QString(title).remove(u'&'));
    box->setAccessibleDescription(toolTip);
    column->addWidget(box);
    bind(box, control);
}

void addSlider(QVBoxLayout *column, SliderControl &control, const QString &caption, const QString &objectName,
               const QString &accessibleName, QWidget *parent)
{
    auto *const row = new QHBoxLayout;
    QLabel *const captionLabel = addCaption(row, caption, control, parent);
    auto *const slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(objectName);
    slider->setAccessibleName(accessibleName);
    slider->setToolTip(accessibleName);
    slider->setTickPosition(QSlider::TicksBelow);
    captionLabel->setBuddy(slider);
    auto *const value = new QLabel(parent);
    value->setObjectName(objectName + u"Value"_s);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // The row must not move while the number gets more digits.
    const QFontMetrics metrics(value->font());
    value->setMinimumWidth(std::max(metrics.horizontalAdvance(QString::number(control.minimum())),
                                    metrics.horizontalAdvance(QString::number(control.maximum()))));
    row->addWidget(slider, 1);
    row->addWidget(value);
    column->addLayout(row);
    bind(slider, value, control);
}

void addChoice(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &objectName,
               const QString &accessibleName, QWidget *parent)
{
    auto *const row = new QHBoxLayout;
    addCaption(row, caption, control, parent);
    auto *const matrix = new RadioMatrix(parent);
    matrix->setObjectName(objectName);
    matrix->setAccessibleName(accessibleName);
    matrix->setToolTip(accessibleName);
    row->addWidget(matrix, 1);
    column->addLayout(row);
    bind(matrix, control);
}

void addStepper(QVBoxLayout *column, StepperControl &control, const QString &caption, const QString &objectName,
                const QString &accessibleName, QWidget *parent)
{
    auto *const row = new QHBoxLayout;
    QLabel *const captionLabel = addCaption(row, caption, control, parent);
    auto *const box = new LevelBox(parent);
    name(box, objectName, accessibleName);
    captionLabel->setBuddy(box);
    row->addWidget(box);
    row->addStretch(1);
    column->addLayout(row);
    bind(box, control);
}

void addDropDown(QVBoxLayout *column, ChoiceControl &control, const QString &caption, const QString &unit,
                 const QString &objectName, const QString &accessibleName, QWidget *parent)
{
    auto *const box = new QComboBox(parent);
    name(box, objectName, accessibleName);
    addBoxWithUnit(column, box, control, caption, unit, parent);
    bind(box, control);
}

void addCombo(QVBoxLayout *column, ComboControl &control, const QString &caption, const QString &unit,
              const QString &objectName, const QString &accessibleName, QWidget *parent)
{
    auto *const box = new QComboBox(parent);
    name(box, objectName, accessibleName);
    addBoxWithUnit(column, box, control, caption, unit, parent);
    bind(box, control);
    name(box->lineEdit(), objectName + u"Field"_s, accessibleName);
}

} // namespace nurv
