// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyTab.h"

#include "app/NURVController.h"
#include "lossy/EncodeAACTask.h"
#include "lossy/EncodeMP3Task.h"
#include "lossy/EncodeOpusTask.h"
#include "settings/SettingsStore.h"
#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kBestQuality = 127;
constexpr int kUsualBitRate = 160;
constexpr int kUsualFrameSizeIndex = 3;

} // namespace

LossyTab::LossyTab(NURVController &controller)
    : ConversionTab(controller, u"lossy"_s, u"encodeLossyToSourceDirectory"_s),
      outputFormatMatrix({u"LAME MP3"_s, u"AAC"_s, u"Opus"_s}), mp3Matrix({u"CBR"_s, u"VBR"_s}, 2),
      aacMatrix({u"CBR"_s, u"ABR"_s, u"VBR Constrained"_s, u"VBR"_s}, 2),
      opusMatrix({u"CBR"_s, u"VBR Constrained"_s, u"VBR"_s}, 3), slider(0, 9, 1, 0), stepper(0, kBestQuality, 0),
      comboBox({32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}, kUsualBitRate),
      opusFrameSizeCombo({u"2.5"_s, u"5"_s, u"10"_s, u"20"_s, u"40"_s, u"60"_s})
{
    const SettingsStore &settings = SettingsStore::instance();
    slider.setIntegerValue(settings.integer(u"lossySliderLevel"_s));
    comboBox.setIntegerValue(settings.integer(u"lossyComboLevel"_s));
    stepper.setIntegerValue(settings.integer(u"lossyStepperLevel"_s));
    // A stored index that is none leaves the usual size.
    opusFrameSizeCombo.setSelectedIndex(kUsualFrameSizeIndex);
    if (const int index = settings.integer(u"opusFrameSizeIndex"_s); index >= 0 && index < opusFrameSizeCombo.titles().size())
        opusFrameSizeCombo.setSelectedIndex(index);
    stepperAction();
    for (ChoiceControl *const control : {&outputFormatMatrix, &mp3Matrix, &aacMatrix, &opusMatrix})
        connect(control, &Control::valueChanged, this, &LossyTab::displayRelevantOptions);
    // Whatever is chosen last is there again at the next start, also when no mode was changed after it.
    for (Control *const control : std::initializer_list<Control *>{&slider, &comboBox, &opusFrameSizeCombo})
        connect(control, &Control::valueChanged, this, &LossyTab::displayRelevantOptions);
    connect(&stepper, &Control::valueChanged, this, &LossyTab::stepperAction);
    connect(&stepperTextField, &Control::valueChanged, this, &LossyTab::controlTextDidChange);
}

void LossyTab::displayRelevantOptions()
{
    const QString encoder = outputFormatMatrix.selectedTitle();
    const bool isMp3 = encoder == u"LAME MP3";
    const bool isAac = encoder == u"AAC";
    const bool isOpus = encoder == u"Opus";
    const bool hasSlider = isMp3 && mp3Matrix.selectedTitle() == u"VBR";
    const bool hasStepper = isAac && aacMatrix.selectedTitle() == u"VBR";
    mp3Matrix.setEnabled(isMp3);
    aacMatrix.setEnabled(isAac);
    opusMatrix.setEnabled(isOpus);
    slider.setEnabled(hasSlider);
    stepper.setEnabled(hasStepper);
    stepperTextField.setEnabled(hasStepper);
    comboBox.setEnabled(!hasSlider && !hasStepper);
    opusFrameSizeCombo.setEnabled(isOpus);

    SettingsStore &settings = SettingsStore::instance();
    settings.setValue(u"lossySliderLevel"_s, slider.integerValue());
    settings.setValue(u"lossyComboLevel"_s, comboBox.integerValue());
    settings.setValue(u"opusFrameSizeIndex"_s, opusFrameSizeCombo.selectedIndex());
}

void LossyTab::stepperAction()
{
    stepperTextField.setText(stepper.stringValue());
    SettingsStore::instance().setValue(u"lossyStepperLevel"_s, stepper.integerValue());
}

void LossyTab::controlTextDidChange()
{
    const int typed = leadingInteger(stepperTextField.text());
    if (typed >= 0 && typed <= kBestQuality)
        stepper.setIntegerValue(typed);
    stepperAction();
}

std::shared_ptr<Conversion> LossyTab::makeConversion(const Batch &batch, const QString &source) const
{
    NURVTaskQueue *const queue = &nurvController().taskQueue();
    const QString folder = folderFor(batch, source);
    const QString encoder = outputFormatMatrix.selectedTitle();
    if (encoder == u"LAME MP3") {
        const QString type = mp3Matrix.selectedTitle();
        const int level = type == u"CBR" ? comboLevel() : type == u"VBR" ? sliderLevel() : 0;
        return std::make_shared<EncodeMP3Task>(queue, source, type, folder, level);
    }
    if (encoder == u"AAC") {
        const QString type = aacMatrix.selectedTitle();
        return std::make_shared<EncodeAACTask>(queue, source, type, folder,
                                               type == u"VBR" ? stepperLevel() : comboLevel());
    }
    if (encoder == u"Opus") {
        return std::make_shared<EncodeOpusTask>(queue, source, opusMatrix.selectedTitle(), folder, comboLevel(),
                                                opusFrameSizeLevel().toDouble());
    }
    return nullptr;
}

} // namespace nurv
