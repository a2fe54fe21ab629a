// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"
#include "ui/LevelWords.h"
#include "ui/OptionArea.h"
#include "ui/pages/TabPage.h"
#include "ui/WindowFixture.h"

#include <QCoreApplication>
#include <QLabel>
#include <QSlider>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace nurv::test {

namespace {

/// The pages show the options of what is chosen, and no others.
class RelevantOptionsTest : public ::testing::Test, public WindowFixture {
protected:
    QStringList shown(const QString &label, const QStringList &objectNames)
    {
        controller.selectTab(label);
        QStringList names;
        for (const QString &objectName : objectNames) {
            const auto *const part = window.page(label)->findChild<QWidget *>(objectName);
            EXPECT_NE(part, nullptr) << qPrintable(objectName);
            if (part != nullptr && part->isVisibleTo(window.page(label)))
                names.append(objectName);
        }
        return names;
    }
    QString textOf(const QString &label, const QString &objectName)
    {
        const auto *const text = window.page(label)->findChild<QLabel *>(objectName);
        return text != nullptr ? text->text() : u"none"_s;
    }
};

} // namespace

TEST_F(RelevantOptionsTest, OfTheFormatOnTheEncodePage)
{
    const QStringList all{u"flacGroup"_s, u"shortenGroup"_s, u"wavpackGroup"_s, u"apeGroup"_s};
    const std::map<QString, QStringList> groups{{u"SHN"_s, {u"shortenGroup"_s}}, {u"WV"_s, {u"wavpackGroup"_s}},
                                                {u"FLAC"_s, {u"flacGroup"_s}},   {u"TTA"_s, {}},
                                                {u"APE"_s, {u"apeGroup"_s}},     {u"M4A"_s, {}}};
    for (qsizetype cell = 0; cell < encodeTab.outputFormatMatrix.titles().size(); ++cell) {
        encodeTab.outputFormatMatrix.setSelectedIndex(static_cast<int>(cell));
        encodeTab.displayRelevantOptions();
        EXPECT_EQ(shown(u"encode"_s, all), groups.at(encodeTab.outputFormat())) << qPrintable(encodeTab.outputFormat());
    }
}

TEST_F(RelevantOptionsTest, OfTheModeOnTheLossyPage)
{
    const QStringList all{u"mp3Matrix"_s, u"aacMatrix"_s, u"opusMatrix"_s,        u"comboBox"_s,
                          u"slider"_s,    u"stepper"_s,   u"opusFrameSizeCombo"_s};
    const auto choose = [&](const QString &encoder, ChoiceControl &modes, const QString &mode) {
        lossyTab.outputFormatMatrix.selectTitle(encoder);
        modes.selectTitle(mode);
        return shown(u"lossy"_s, all);
    };
    EXPECT_EQ(choose(u"LAME MP3"_s, lossyTab.mp3Matrix, u"VBR"_s), (QStringList{u"mp3Matrix"_s, u"slider"_s}));
    EXPECT_EQ(choose(u"LAME MP3"_s, lossyTab.mp3Matrix, u"CBR"_s), (QStringList{u"mp3Matrix"_s, u"comboBox"_s}));
    EXPECT_EQ(choose(u"AAC"_s, lossyTab.aacMatrix, u"ABR"_s), (QStringList{u"aacMatrix"_s, u"comboBox"_s}));
    EXPECT_EQ(choose(u"AAC"_s, lossyTab.aacMatrix, u"VBR"_s), (QStringList{u"aacMatrix"_s, u"stepper"_s}));
    EXPECT_EQ(choose(u"Opus"_s, lossyTab.opusMatrix, u"VBR"_s),
              (QStringList{u"opusMatrix"_s, u"comboBox"_s, u"opusFrameSizeCombo"_s}));
}

TEST_F(RelevantOptionsTest, OfTheCommandOnTheChecksumPage)
{
    const QStringList all{u"commandGroup"_s, u"createGroup"_s, u"verifyGroup"_s};
    const std::vector<QStringList> groups{
        {u"commandGroup"_s}, {u"commandGroup"_s, u"createGroup"_s}, {u"commandGroup"_s, u"verifyGroup"_s}};
    for (int command = 0; command < 3; ++command) {
        checksumTab.commandOptions.setSelectedIndex(command);
        EXPECT_EQ(shown(u"checksum"_s, all), groups[static_cast<std::size_t>(command)]) << command;
    }
}

TEST_F(RelevantOptionsTest, LevelsSayWhatTheyMean)
{
    encodeTab.flacSlider.setIntegerValue(8);
    encodeTab.apeSlider.setIntegerValue(2000);
    lossyTab.slider.setIntegerValue(0);
    EXPECT_EQ(textOf(u"encode"_s, u"flacSliderValue"_s), u"8 – smallest"_s);
    EXPECT_EQ(textOf(u"encode"_s, u"apeSliderValue"_s), u"2000 – normal"_s);
    EXPECT_EQ(textOf(u"lossy"_s, u"sliderValue"_s), u"0 – best"_s);
    EXPECT_EQ(textOf(fixTab.label(), u"flacLevelSliderValue"_s), QString::number(fixTab.flacLevelSlider.integerValue()));
}

TEST_F(RelevantOptionsTest, TheNoteSaysWhatDeletingMeansNow)
{
    const auto note = [this] { return textOf(u"encode"_s, u"deletionNote"_s); };
    SettingsStore &settings = SettingsStore::instance();
    settings.setValue(u"trashOrDelete"_s, 1);
    encodeTab.originals.proveButton.setOn(false);
    EXPECT_EQ(note(), u"The originals stay."_s);
    encodeTab.deleteOriginalsButton.setOn(true);
    EXPECT_EQ(note(), u"Moved to the trash."_s);
    settings.setValue(u"trashOrDelete"_s, 0);
    EXPECT_EQ(note(), u"Deleted for good."_s);
    encodeTab.originals.proveButton.setOn(true);
    EXPECT_EQ(note(), u"Deleted for good, after a proof."_s);
    settings.setValue(u"trashOrDelete"_s, 1);
    EXPECT_EQ(note(), u"Moved to the trash, after a proof."_s);
    for (const char *const key : {"trashOrDelete", "proveBeforeDeleting"})
        settings.remove(QString::fromLatin1(key));
}

TEST_F(RelevantOptionsTest, TheColumnsOfAllPagesHaveOneWidth)
{
    show();
    QList<int> widths;
    for (const Tool &tool : toolbox()) {
        controller.selectTab(tool.label);
        widths.append(window.page(tool.label)->findChild<OptionArea *>(u"options"_s)->sizeHint().width());
    }
    EXPECT_EQ(widths, QList<int>(widths.size(), widths.first()));
    // One that has to grow takes the others along.
    controller.selectTab(u"lossy"_s);
    auto *const label = window.page(u"lossy"_s)->findChild<QLabel *>(u"deletionNote"_s);
    label->setMinimumWidth(widths.first() + 200);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    for (const Tool &tool : toolbox())
        EXPECT_GE(window.page(tool.label)->findChild<OptionArea *>(u"options"_s)->sizeHint().width(), widths.first() + 200)
            << qPrintable(tool.label);
}

TEST(LevelWords, EveryLevelHasOne)
{
    QStringList words;
    for (int level = 0; level <= 8; ++level)
        words.append(levelWords::flac(level));
    EXPECT_THAT(words, ElementsAre(u"0 – fastest"_s, u"1 – faster"_s, u"2 – faster"_s, u"3 – faster"_s, u"4 – faster"_s,
                                   u"5 – normal"_s, u"6 – smaller"_s, u"7 – smaller"_s, u"8 – smallest"_s));
    words.clear();
    for (int level = 1000; level <= 5000; level += 1000)
        words.append(levelWords::monkeysAudio(level));
    EXPECT_THAT(words, ElementsAre(u"1000 – fast"_s, u"2000 – normal"_s, u"3000 – high"_s, u"4000 – extra high"_s,
                                   u"5000 – insane"_s));
    EXPECT_EQ(levelWords::monkeysAudio(2500), u"2500"_s);
    EXPECT_EQ(levelWords::monkeysAudio(6000), u"6000"_s);
    EXPECT_EQ(levelWords::mp3(0), u"0 – best"_s);
    EXPECT_EQ(levelWords::mp3(2), u"2 – very good"_s);
    EXPECT_EQ(levelWords::mp3(5), u"5 – good"_s);
    EXPECT_EQ(levelWords::mp3(9), u"9 – smallest"_s);
}

} // namespace nurv::test
