// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "lossy/EncodeAACTask.h"
#include "lossy/EncodeMP3Task.h"
#include "lossy/EncodeOpusTask.h"
#include "lossy/LossyTab.h"

#include <ostream>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class LossyTabTest : public test::HeldQueueFixture {
protected:
    LossyTabTest()
    {
        for (const QString &key : {u"lossySliderLevel"_s, u"lossyStepperLevel"_s, u"lossyComboLevel"_s,
                                   u"opusFrameSizeIndex"_s, u"encodeLossyToSourceDirectory"_s})
            SettingsStore::instance().remove(key);
    }
    static int stored(const QString &key) { return SettingsStore::instance().integer(key); }

    /// The one job that the button queues for a file, with its command line.
    template<typename Task>
    std::shared_ptr<Task> queuedFor(LossyTab &tab, const QString &source)
    {
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({source});
        tab.executeCommand();
        const auto &rows = queue().panelArray();
        return rows.empty() ? nullptr : std::dynamic_pointer_cast<Task>(rows.back());
    }
};

struct Mode {
    QString encoder;
    QString mode;
    QStringList enabled;
};

void PrintTo(const Mode &mode, std::ostream *stream)
{
    *stream << qPrintable(mode.encoder) << ' ' << qPrintable(mode.mode);
}

class LossyModeTest : public LossyTabTest, public ::testing::WithParamInterface<Mode> {};

TEST_P(LossyModeTest, EnablesWhatItUses)
{
    LossyTab tab(controller);
    const Mode &mode = GetParam();
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(mode.encoder));
    ChoiceControl &matrix = mode.encoder == u"AAC" ? tab.aacMatrix : mode.encoder == u"Opus" ? tab.opusMatrix : tab.mp3Matrix;
    ASSERT_TRUE(matrix.selectTitle(mode.mode));
    tab.displayRelevantOptions();
    QStringList enabled;
    for (const auto &[name, control] : std::initializer_list<std::pair<QString, Control *>>{{u"mp3"_s, &tab.mp3Matrix},
                                                                                            {u"aac"_s, &tab.aacMatrix},
                                                                                            {u"opus"_s, &tab.opusMatrix},
                                                                                            {u"combo"_s, &tab.comboBox},
                                                                                            {u"slider"_s, &tab.slider},
                                                                                            {u"stepper"_s, &tab.stepper},
                                                                                            {u"field"_s, &tab.stepperTextField},
                                                                                            {u"frames"_s, &tab.opusFrameSizeCombo}}) {
        if (control->isEnabled())
            enabled.append(name);
    }
    EXPECT_EQ(enabled, mode.enabled);
}

INSTANTIATE_TEST_SUITE_P(
    All, LossyModeTest,
    ::testing::Values(Mode{u"LAME MP3"_s, u"CBR"_s, {u"mp3"_s, u"combo"_s}},
                      Mode{u"LAME MP3"_s, u"VBR"_s, {u"mp3"_s, u"slider"_s}},
                      Mode{u"AAC"_s, u"CBR"_s, {u"aac"_s, u"combo"_s}}, Mode{u"AAC"_s, u"ABR"_s, {u"aac"_s, u"combo"_s}},
                      Mode{u"AAC"_s, u"VBR Constrained"_s, {u"aac"_s, u"combo"_s}},
                      Mode{u"AAC"_s, u"VBR"_s, {u"aac"_s, u"stepper"_s, u"field"_s}},
                      Mode{u"Opus"_s, u"CBR"_s, {u"opus"_s, u"combo"_s, u"frames"_s}},
                      Mode{u"Opus"_s, u"VBR Constrained"_s, {u"opus"_s, u"combo"_s, u"frames"_s}},
                      Mode{u"Opus"_s, u"VBR"_s, {u"opus"_s, u"combo"_s, u"frames"_s}}));

TEST_F(LossyTabTest, BeginsWithTheDefaults)
{
    const LossyTab tab(controller);
    EXPECT_EQ(tab.sliderLevel(), 3);
    EXPECT_EQ(tab.stepperLevel(), 88);
    EXPECT_EQ(tab.stepperTextField.text(), u"88");
    EXPECT_EQ(tab.comboLevel(), 160);
    EXPECT_EQ(tab.opusFrameSizeLevel(), u"20");
}

TEST_F(LossyTabTest, KeepsWhatWasChosenForTheNextTime)
{
    {
        LossyTab tab(controller);
        tab.slider.setIntegerValue(0);
        tab.comboBox.setText(u"137"_s);
        tab.stepper.setIntegerValue(120);
        tab.opusFrameSizeCombo.setSelectedIndex(0);
        EXPECT_EQ(stored(u"lossySliderLevel"_s), 0);
        EXPECT_EQ(stored(u"lossyComboLevel"_s), 137);
        EXPECT_EQ(stored(u"lossyStepperLevel"_s), 120);
        EXPECT_EQ(stored(u"opusFrameSizeIndex"_s), 0);
    }
    const LossyTab tab(controller);
    EXPECT_EQ(tab.sliderLevel(), 0);
    EXPECT_EQ(tab.comboLevel(), 137);
    EXPECT_EQ(tab.stepperLevel(), 120);
    EXPECT_EQ(tab.opusFrameSizeLevel(), u"2.5");
}

TEST_F(LossyTabTest, PutsTheLastNumberBackForOneThatIsOutOfRange)
{
    LossyTab tab(controller);
    for (const QString &typed : {u"200"_s, u"-1"_s, u"128"_s}) {
        tab.stepperTextField.setText(typed);
        EXPECT_EQ(tab.stepperLevel(), 88) << qPrintable(typed);
        EXPECT_EQ(tab.stepperTextField.text(), u"88") << qPrintable(typed);
    }
    tab.stepperTextField.setText(u"127"_s);
    EXPECT_EQ(tab.stepperLevel(), 127);
    EXPECT_EQ(stored(u"lossyStepperLevel"_s), 127);
    // The number at the start of the text counts, and none is 0.
    tab.stepperTextField.setText(u"12 or so"_s);
    EXPECT_EQ(tab.stepperLevel(), 12);
    EXPECT_EQ(tab.stepperTextField.text(), u"12");
    tab.stepperTextField.setText(u"x"_s);
    EXPECT_EQ(tab.stepperLevel(), 0);
}

TEST_F(LossyTabTest, MakesAJobByEncoderModeAndLevel)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    LossyTab tab(controller);
    tab.comboBox.setText(u"128"_s);
    tab.slider.setIntegerValue(7);
    tab.opusFrameSizeCombo.setSelectedIndex(0);
    tab.mp3Matrix.selectTitle(u"VBR"_s);
    const auto mp3 = queuedFor<EncodeMP3Task>(tab, wav);
    ASSERT_TRUE(mp3);
    EXPECT_EQ(mp3->outputFile(), out.path(u"a.mp3"_s));
    EXPECT_FALSE(mp3->deleteOriginal());
    EXPECT_EQ(mp3->settings().type, u"VBR");
    EXPECT_EQ(mp3->settings().level, 7);
    tab.mp3Matrix.selectTitle(u"CBR"_s);
    const auto constant = queuedFor<EncodeMP3Task>(tab, wav);
    ASSERT_TRUE(constant);
    EXPECT_EQ(constant->settings().type, u"CBR");
    EXPECT_EQ(constant->settings().level, 128);

    tab.outputFormatMatrix.selectTitle(u"AAC"_s);
    tab.aacMatrix.selectTitle(u"VBR"_s);
    tab.stepper.setIntegerValue(90);
    const auto byQuality = queuedFor<EncodeAACTask>(tab, wav);
    ASSERT_TRUE(byQuality);
    EXPECT_EQ(byQuality->settings().quality, 90U);
    tab.aacMatrix.selectTitle(u"VBR Constrained"_s);
    const auto byRate = queuedFor<EncodeAACTask>(tab, wav);
    ASSERT_TRUE(byRate);
    EXPECT_EQ(byRate->settings().bitRate, 128000U);

    tab.outputFormatMatrix.selectTitle(u"Opus"_s);
    tab.opusMatrix.selectTitle(u"VBR"_s);
    const auto opus = queuedFor<EncodeOpusTask>(tab, wav);
    ASSERT_TRUE(opus);
    EXPECT_EQ(opus->settings().type, u"VBR");
    EXPECT_EQ(opus->settings().bitRate, 128);
    EXPECT_EQ(opus->settings().frameSize, 2.5);
    EXPECT_TRUE(tab.fileNames().isEmpty());
    // What is chosen later is for later jobs.
    tab.comboBox.setText(u"64"_s);
    EXPECT_EQ(opus->settings().bitRate, 128);
    EXPECT_EQ(constant->settings().level, 128);
}

TEST_F(LossyTabTest, QueuesNothingWithoutFilesOrWithoutAFolder)
{
    LossyTab tab(controller);
    tab.executeCommand();
    tab.addMatchedFiles({test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1})});
    prompts.expectOutputFolder(std::nullopt);
    tab.executeCommand();
    EXPECT_TRUE(queue().panelArray().empty());
    EXPECT_EQ(tab.fileNames().size(), 1);
}

TEST_F(LossyTabTest, TellsEveryJobToDeleteItsSourceAfterAYes)
{
    LossyTab tab(controller);
    for (const QString &encoder : {u"LAME MP3"_s, u"AAC"_s, u"Opus"_s}) {
        tab.outputFormatMatrix.selectTitle(encoder);
        tab.deleteOriginalsButton.setOn(true);
        prompts.expectDeletionQuestion(u"Yes"_s);
        const auto job = queuedFor<LossyEncodeTask>(tab, test::writeWav(folder.path(encoder + u".wav"_s), {.seconds = 0.1}));
        ASSERT_TRUE(job);
        EXPECT_TRUE(job->deleteOriginal()) << qPrintable(encoder);
    }
}

TEST_F(LossyTabTest, TakesNoStoredValueThatItsControlsDoNotHave)
{
    SettingsStore::instance().setValue(u"lossySliderLevel"_s, 99);
    SettingsStore::instance().setValue(u"lossyComboLevel"_s, -5);
    SettingsStore::instance().setValue(u"lossyStepperLevel"_s, 4'000);
    SettingsStore::instance().setValue(u"opusFrameSizeIndex"_s, 17);
    const LossyTab tab(controller);
    EXPECT_EQ(tab.sliderLevel(), 9);
    EXPECT_EQ(tab.comboLevel(), 160);
    EXPECT_EQ(tab.stepperLevel(), 127);
    EXPECT_EQ(tab.opusFrameSizeLevel(), u"20");
}

TEST_F(LossyTabTest, PutsOutputsBesideTheSourcesWithoutAQuestion)
{
    LossyTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    tab.addMatchedFiles({test::writeWav(folder.path(u"below/a.wav"_s), {.seconds = 0.1}),
                         test::writeWav(folder.path(u"deep/er/b.wav"_s), {.seconds = 0.1})});
    tab.executeCommand();
    ASSERT_EQ(queue().panelArray().size(), 2U);
    QStringList outputs;
    for (const auto &task : queue().panelArray())
        outputs.append(std::dynamic_pointer_cast<EncodeMP3Task>(task)->outputFile());
    EXPECT_EQ(outputs, (QStringList{folder.path(u"below/a.mp3"_s), folder.path(u"deep/er/b.mp3"_s)}));
}

TEST_F(LossyTabTest, QueuesNothingAndKeepsTheListWhenOriginalsAreNotToGo)
{
    LossyTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.addMatchedFiles({test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1})});
    prompts.expectDeletionQuestion(u"No"_s);
    tab.executeCommand();
    EXPECT_TRUE(queue().panelArray().empty());
    EXPECT_EQ(tab.fileNames().size(), 1);
}

} // namespace
} // namespace nurv
