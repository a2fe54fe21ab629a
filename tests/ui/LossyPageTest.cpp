// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"
#include "WindowFixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class LossyPageTest : public ::testing::Test, public WindowFixture {
protected:
    LossyPageTest()
    {
        lossyTab.comboBox.setIntegerValue(160);
        lossyTab.stepper.setIntegerValue(88);
        controller.selectTab(u"lossy"_s);
        show();
    }
    /// Replaces what stands in the field by what is typed, key by key.
    static void type(QLineEdit *field, const QString &text)
    {
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
    }

    QComboBox *rates = find<QComboBox>(u"comboBox"_s);
    QSpinBox *quality = find<QSpinBox>(u"stepper"_s);
};

TEST_F(LossyPageTest, TakesTheTypedRateAsItIs)
{
    type(rates->lineEdit(), u"12"_s);
    EXPECT_EQ(rates->currentText(), u"12");
    EXPECT_EQ(lossyTab.comboLevel(), 12);
    type(rates->lineEdit(), u"137"_s);
    EXPECT_EQ(lossyTab.comboLevel(), 137);
    QTest::keyClicks(rates->lineEdit(), u"x-"_s);
    EXPECT_EQ(rates->currentText(), u"137");
}

TEST_F(LossyPageTest, PutsTheLastRateBackIntoAnEmptyField)
{
    rates->lineEdit()->setFocus();
    rates->lineEdit()->selectAll();
    QTest::keyClick(rates->lineEdit(), Qt::Key_Delete);
    EXPECT_EQ(rates->currentText(), QString());
    EXPECT_EQ(lossyTab.comboLevel(), 160);
    QTest::keyClick(rates->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(rates->currentText(), u"160");
}

TEST_F(LossyPageTest, StepsFromTheRateThatIsShown)
{
    EXPECT_EQ(rates->currentText(), u"160");
    rates->setFocus();
    QTest::keyClick(rates, Qt::Key_Down);
    EXPECT_EQ(lossyTab.comboLevel(), 192);
    QTest::keyClick(rates, Qt::Key_Up);
    QTest::keyClick(rates, Qt::Key_Up);
    EXPECT_EQ(lossyTab.comboLevel(), 128);
}

TEST_F(LossyPageTest, PutsTheLastQualityBackForOneOutOfRange)
{
    lossyTab.outputFormatMatrix.selectTitle(u"AAC"_s);
    lossyTab.aacMatrix.selectTitle(u"VBR"_s);
    ASSERT_TRUE(quality->isEnabled());
    auto *const field = quality->findChild<QLineEdit *>();
    type(field, u"12"_s);
    EXPECT_EQ(field->text(), u"12");
    EXPECT_EQ(lossyTab.stepperLevel(), 12);
    QTest::keyClicks(field, u"8"_s);
    EXPECT_EQ(field->text(), u"12") << "128 is none";
    EXPECT_EQ(lossyTab.stepperLevel(), 12);
    type(field, u"-"_s);
    EXPECT_EQ(field->text(), u"0") << "no number is 0";
    EXPECT_EQ(lossyTab.stepperLevel(), 0);
    QTest::keyClick(quality, Qt::Key_Up);
    EXPECT_EQ(lossyTab.stepperLevel(), 1);
    EXPECT_EQ(lossyTab.stepperTextField.text(), u"1");
    EXPECT_EQ(SettingsStore::instance().integer(u"lossyStepperLevel"_s), 1);
}

TEST_F(LossyPageTest, ShowsTheSystemsOwnTitles)
{
    QStringList titles;
    for (const QAbstractButton *const button : find<QWidget>(u"lossyPage"_s)->findChild<QWidget *>(u"outputFormatMatrix"_s)->findChildren<QAbstractButton *>())
        titles.append(QString(button->text()).remove(u'&'));
    EXPECT_TRUE(find<QWidget>(u"lossyPage"_s)->isVisible());
    EXPECT_EQ(titles, (QStringList{u"LAME MP3"_s, u"AAC"_s, u"Opus"_s}));
}

} // namespace

} // namespace nurv::test
