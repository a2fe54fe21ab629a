// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Control.h"

#include "app/NURVController.h"
#include "app/TestApplication.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"
#include "toolbox/Toolbox.h"

#include <QFile>

#include <gtest/gtest.h>

#include <limits>
#include <thread>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

class SignalCounter {
public:
    explicit SignalCounter(Control &control)
    {
        QObject::connect(&control, &Control::changed, &control, [this] { ++changes; });
        QObject::connect(&control, &Control::valueChanged, &control, [this] { ++values; });
    }

    int changes = 0;
    int values = 0;
};

// The lines of the settings file, after what is pending has been written.
QList<QByteArray> settingsLines()
{
    EXPECT_TRUE(SettingsStore::instance().sync());
    QFile file(SettingsStore::instance().filePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QList<QByteArray>();
}

class BoundControl : public ::testing::Test {
protected:
    BoundControl() { NURVController::registerDefaults(toolbox()); }

    SettingsStore &store = SettingsStore::instance();
};

} // namespace

TEST(Control, SignalsOnlyWhenSomethingIsAnother)
{
    CheckControl check;
    const SignalCounter counter(check);
    check.setOn(false);
    check.setEnabled(true);
    check.setHidden(false);
    EXPECT_EQ(counter.changes, 0);

    check.setEnabled(false);
    check.setHidden(true);
    EXPECT_EQ(counter.changes, 2);
    EXPECT_EQ(counter.values, 0);
    EXPECT_FALSE(check.isEnabled());
    EXPECT_TRUE(check.isHidden());

    check.setOn(true);
    EXPECT_EQ(counter.changes, 3);
    EXPECT_EQ(counter.values, 1);
}

TEST(ChoiceControl, CountsItsCellsRowByRow)
{
    ChoiceControl choice({u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}, 2, 2);
    EXPECT_EQ(choice.selectedTitle(), u"FLAC"_s);
    EXPECT_EQ(choice.selectedRow(), 1);
    EXPECT_EQ(choice.selectedColumn(), 0);
    choice.setSelectedIndex(5);
    EXPECT_EQ(choice.selectedTitle(), u"M4A"_s);
    EXPECT_EQ(choice.selectedRow(), 2);
    EXPECT_EQ(choice.selectedColumn(), 1);
}

TEST(ChoiceControl, HasNoSelectionOutsideItsCells)
{
    ChoiceControl choice({u"WAV"_s, u"AIFF"_s});
    for (const int index : {-1, 2, 1000}) {
        choice.setSelectedIndex(index);
        EXPECT_EQ(choice.selectedIndex(), index);
        EXPECT_EQ(choice.selectedTitle(), QString());
        EXPECT_EQ(choice.selectedRow(), -1);
        EXPECT_EQ(choice.selectedColumn(), -1);
    }
}

TEST(ChoiceControl, SelectsACellByItsTitleInAnyCase)
{
    ChoiceControl choice({u"WAV"_s, u"AIFF"_s});
    EXPECT_TRUE(choice.selectTitle(u"aiff"_s));
    EXPECT_EQ(choice.selectedIndex(), 1);
    EXPECT_FALSE(choice.selectTitle(u"FLAC"_s));
    EXPECT_EQ(choice.selectedIndex(), 1);
}

TEST(SliderControl, KeepsToItsRangeAndItsSteps)
{
    SliderControl slider(1000, 5000, 1000, 2000);
    EXPECT_EQ(slider.stringValue(), u"2000"_s);
    slider.setIntegerValue(2499);
    EXPECT_EQ(slider.integerValue(), 2000);
    slider.setIntegerValue(2500);
    EXPECT_EQ(slider.integerValue(), 3000);
    slider.setIntegerValue(std::numeric_limits<int>::max());
    EXPECT_EQ(slider.integerValue(), 5000);
    slider.setIntegerValue(std::numeric_limits<int>::min());
    EXPECT_EQ(slider.integerValue(), 1000);
}

TEST(SliderControl, HoldsTheWholeRangeOfIntegers)
{
    constexpr int kLowest = std::numeric_limits<int>::min() + 1;
    constexpr int kHighest = std::numeric_limits<int>::max();
    SliderControl slider(-1, kHighest - 1, 1, 7);
    EXPECT_EQ(slider.integerValue(), 7);
    slider.setIntegerValue(kLowest);
    EXPECT_EQ(slider.integerValue(), -1);
}

TEST(LabelControl, SignalsAnotherText)
{
    LabelControl label(u"FLAC options"_s);
    const SignalCounter counter(label);
    label.setText(u"FLAC options"_s);
    EXPECT_EQ(counter.changes, 0);
    label.setText(u"Options"_s);
    EXPECT_EQ(counter.changes, 1);
    EXPECT_EQ(label.text(), u"Options"_s);
}

TEST_F(BoundControl, StartsWithTheSettingAndStoresNothingByItself)
{
    SliderControl level(0, 8, 1, 0);
    level.bindToSetting(u"encodeFlacLevel"_s);
    ChoiceControl format({u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}, 2);
    format.bindToSetting(u"encodeOutputFormat"_s);
    CheckControl verify(true);
    verify.bindToSetting(u"flacVerifyButton"_s);

    EXPECT_EQ(level.integerValue(), 5);
    EXPECT_EQ(format.selectedTitle(), u"FLAC"_s);
    EXPECT_FALSE(verify.isOn());
    for (const QByteArray &line : settingsLines()) {
        EXPECT_FALSE(line.startsWith("encodeFlacLevel") || line.startsWith("encodeOutputFormat")
                     || line.startsWith("flacVerifyButton"))
            << line.constData();
    }
}

TEST_F(BoundControl, StoresItsValueAsAnIntegerInTheFile)
{
    SliderControl level(0, 8, 1, 0);
    level.bindToSetting(u"encodeFlacLevel"_s);
    ChoiceControl format({u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}, 2);
    format.bindToSetting(u"encodeOutputFormat"_s);
    CheckControl verify;
    verify.bindToSetting(u"flacVerifyButton"_s);

    level.setIntegerValue(8);
    format.setSelectedIndex(4);
    verify.setOn(true);
    QList<QByteArray> lines = settingsLines();
    EXPECT_TRUE(lines.contains("encodeFlacLevel=8"));
    EXPECT_TRUE(lines.contains("encodeOutputFormat=4"));
    EXPECT_TRUE(lines.contains("flacVerifyButton=1"));

    verify.setOn(false);
    lines = settingsLines();
    EXPECT_TRUE(lines.contains("flacVerifyButton=0"));
    for (const QString &key : {u"encodeFlacLevel"_s, u"encodeOutputFormat"_s, u"flacVerifyButton"_s})
        store.remove(key);
}

TEST_F(BoundControl, FollowsTheSetting)
{
    CheckControl one;
    one.bindToSetting(u"encodeToSourceDirectory"_s);
    CheckControl other;
    other.bindToSetting(u"encodeToSourceDirectory"_s);
    const SignalCounter counter(other);

    one.setOn(true);
    EXPECT_TRUE(other.isOn());
    EXPECT_EQ(counter.values, 1);
    store.setValue(u"decodeToSourceDirectory"_s, 1);
    EXPECT_EQ(counter.values, 1);
    store.remove(u"encodeToSourceDirectory"_s);
    EXPECT_FALSE(one.isOn());
    EXPECT_FALSE(other.isOn());
    store.remove(u"decodeToSourceDirectory"_s);
}

TEST_F(BoundControl, FollowsASettingThatAnotherThreadStores)
{
    CheckControl check;
    check.bindToSetting(u"flacGenerateFFPButton"_s);
    std::thread([this] { store.setValue(u"flacGenerateFFPButton"_s, 1); }).join();
    EXPECT_TRUE(test::waitUntil([&] { return check.isOn(); }));
    store.remove(u"flacGenerateFFPButton"_s);
}

TEST_F(BoundControl, LeavesAStoredValueThatItCannotShowAlone)
{
    const test::SettingForTest tooHigh(u"encodeFlacLevel"_s, 99);
    const test::SettingForTest noCell(u"encodeOutputFormat"_s, 17);
    SliderControl level(0, 8, 1, 0);
    level.bindToSetting(u"encodeFlacLevel"_s);
    ChoiceControl format({u"SHN"_s, u"WV"_s, u"FLAC"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}, 2);
    format.bindToSetting(u"encodeOutputFormat"_s);

    EXPECT_EQ(level.integerValue(), 8);
    EXPECT_EQ(format.selectedTitle(), QString());
    EXPECT_EQ(store.integer(u"encodeFlacLevel"_s), 99);
    EXPECT_EQ(store.integer(u"encodeOutputFormat"_s), 17);
    level.setIntegerValue(7);
    EXPECT_EQ(store.integer(u"encodeFlacLevel"_s), 7);
}

TEST_F(BoundControl, StoresNothingMoreOnceItIsGone)
{
    {
        CheckControl check;
        check.bindToSetting(u"flacVerifyButton"_s);
    }
    store.setValue(u"flacVerifyButton"_s, 1);
    EXPECT_EQ(store.integer(u"flacVerifyButton"_s), 1);
    store.remove(u"flacVerifyButton"_s);
}

} // namespace nurv
