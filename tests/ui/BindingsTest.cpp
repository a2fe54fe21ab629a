// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Bindings.h"

#include "app/Control.h"
#include "ui/RadioMatrix.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

TEST(Bindings, ACheckBoxShowsItsControlAndSetsIt)
{
    CheckControl control(true);
    QWidget page;
    QCheckBox box(&page);
    bind(&box, control);
    EXPECT_TRUE(box.isChecked());
    control.setOn(false);
    EXPECT_FALSE(box.isChecked());
    box.click();
    EXPECT_TRUE(control.isOn());
}

TEST(Bindings, WidgetsFollowWhatTheirControlSaysAboutEnabledAndHidden)
{
    CheckControl control;
    QWidget page;
    QCheckBox box(&page);
    bind(&box, control);
    EXPECT_TRUE(box.isEnabled());
    EXPECT_FALSE(box.isHidden());
    control.setEnabled(false);
    control.setHidden(true);
    EXPECT_FALSE(box.isEnabled());
    EXPECT_TRUE(box.isHidden());
    control.setEnabled(true);
    control.setHidden(false);
    EXPECT_TRUE(box.isEnabled());
    EXPECT_FALSE(box.isHidden());
}

TEST(Bindings, AMatrixCountsItsCellsRowByRow)
{
    ChoiceControl control({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s}, 2, 3);
    QWidget page;
    RadioMatrix matrix(&page);
    matrix.setObjectName(u"m"_s);
    bind(&matrix, control);
    ASSERT_EQ(matrix.cellCount(), 6);
    EXPECT_TRUE(matrix.cell(3)->isChecked());
    EXPECT_EQ(matrix.cell(3)->text(), u"d"_s);
    const auto *const grid = qobject_cast<QGridLayout *>(matrix.layout());
    EXPECT_EQ(grid->itemAtPosition(1, 1)->widget(), matrix.cell(3));
    EXPECT_EQ(grid->itemAtPosition(2, 0)->widget(), matrix.cell(4));

    matrix.cell(4)->click();
    EXPECT_EQ(control.selectedIndex(), 4);
    control.setSelectedIndex(0);
    EXPECT_TRUE(matrix.cell(0)->isChecked());
    EXPECT_FALSE(matrix.cell(4)->isChecked());
}

TEST(Bindings, AMatrixWithAnIndexOutsideItsCellsHasNoneChosen)
{
    ChoiceControl control({u"a"_s, u"b"_s}, 2, 1);
    QWidget page;
    RadioMatrix matrix(&page);
    bind(&matrix, control);
    control.setSelectedIndex(7);
    EXPECT_EQ(matrix.selectedIndex(), -1);
    EXPECT_FALSE(matrix.cell(1)->isChecked());
    EXPECT_EQ(control.selectedIndex(), 7);
    matrix.cell(0)->click();
    EXPECT_EQ(control.selectedIndex(), 0);
}

TEST(Bindings, AComboBoxShowsItsControlAndSetsIt)
{
    ChoiceControl control({u"32"_s, u"40"_s, u"48"_s}, 1, 1);
    QWidget page;
    QComboBox box(&page);
    bind(&box, control);
    ASSERT_EQ(box.count(), 3);
    EXPECT_EQ(box.currentText(), u"40"_s);
    control.setSelectedIndex(2);
    EXPECT_EQ(box.currentText(), u"48"_s);
    control.setSelectedIndex(-4);
    EXPECT_EQ(box.currentIndex(), -1);
    box.setCurrentIndex(0);
    Q_EMIT box.activated(0);
    EXPECT_EQ(control.selectedIndex(), 0);
}

TEST(Bindings, ASliderKeepsToTheStepsOfItsControl)
{
    SliderControl control(1000, 5000, 1000, 2000);
    QWidget page;
    QSlider slider(Qt::Horizontal, &page);
    QLabel value(&page);
    bind(&slider, &value, control);
    EXPECT_EQ(slider.minimum(), 1000);
    EXPECT_EQ(slider.maximum(), 5000);
    EXPECT_EQ(slider.value(), 2000);
    EXPECT_EQ(value.text(), u"2000"_s);
    control.setIntegerValue(4000);
    EXPECT_EQ(slider.value(), 4000);
    EXPECT_EQ(value.text(), u"4000"_s);
    slider.setValue(2900);
    EXPECT_EQ(control.integerValue(), 3000);
    EXPECT_EQ(slider.value(), 3000);
    slider.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(control.integerValue(), 4000);
    control.setEnabled(false);
    EXPECT_FALSE(slider.isEnabled());
    EXPECT_FALSE(value.isEnabled());
}

TEST(Bindings, ALabelShowsItsControl)
{
    LabelControl control(u"FLAC options"_s);
    QWidget page;
    QLabel label(&page);
    bind(&label, control);
    EXPECT_EQ(label.text(), u"FLAC options"_s);
    control.setText(u"Other"_s);
    EXPECT_EQ(label.text(), u"Other"_s);
}

TEST(Bindings, AWidgetThatGoesLeavesItsControlWorking)
{
    CheckControl control;
    {
        QWidget page;
        auto *const box = new QCheckBox(&page);
        bind(box, control);
    }
    control.setOn(true);
    control.setEnabled(false);
    EXPECT_TRUE(control.isOn());
}

} // namespace nurv::test
