// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SettingsTable.h"
#include "ui/WindowFixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// What the table of settings says, held against the controls that the settings are those of.
class SettingWords : public ::testing::Test, public WindowFixture {
protected:
    [[nodiscard]] Setting setting(const QString &key) const
    {
        const Setting *const found = settingOf(table, key);
        EXPECT_NE(found, nullptr) << qPrintable(key);
        return found ? *found : Setting();
    }
    void expectRange(const QString &key, const NumberControl &control) const
    {
        EXPECT_EQ(setting(key).least, control.minimum()) << qPrintable(key);
        EXPECT_EQ(setting(key).most, control.maximum()) << qPrintable(key);
    }
    void expectWords(const QString &key, const QStringList &titles) const
    {
        EXPECT_EQ(setting(key).words(), titles) << qPrintable(key);
    }

    const std::vector<Setting> table = settingsTable(toolbox());
};

QStringList lowered(QStringList titles, const QString &unit = {})
{
    for (QString &title : titles)
        title = title.toLower() + unit;
    return titles;
}

} // namespace

TEST_F(SettingWords, AreTheTitlesOfTheChoicesInTheirOrder)
{
    expectWords(u"encodeOutputFormat"_s, lowered(encodeTab.outputFormatMatrix.titles()));
    expectWords(u"fixOutputFormat"_s, lowered(fixTab.outputFormatMatrix.titles()));
    expectWords(u"opusFrameSizeIndex"_s, lowered(lossyTab.opusFrameSizeCombo.titles(), u"ms"_s));
}

TEST_F(SettingWords, RangesAreThoseOfTheControls)
{
    expectRange(u"encodeFlacLevel"_s, encodeTab.flacSlider);
    expectRange(u"fixFlacLevel"_s, fixTab.flacLevelSlider);
    expectRange(u"lossySliderLevel"_s, lossyTab.slider);
    expectRange(u"lossyStepperLevel"_s, lossyTab.stepper);
}

TEST_F(SettingWords, EverySettingTakesItsOwnDefaultAndHasAMeaning)
{
    QStringList keys;
    for (const Setting &each : table) {
        const SettingInput input = each.read(each.textOf(each.standard));
        ASSERT_TRUE(input.value.has_value()) << qPrintable(each.key) << qPrintable(input.objection);
        EXPECT_EQ(*input.value, each.standard) << qPrintable(each.key);
        EXPECT_EQ(input.value->typeId(), each.standard.typeId()) << qPrintable(each.key);
        EXPECT_FALSE(each.meaning.isEmpty() || each.meaning.endsWith(u'.')) << qPrintable(each.key);
        EXPECT_FALSE(keys.contains(each.key)) << qPrintable(each.key);
        keys.append(each.key);
    }
}

} // namespace nurv::test
