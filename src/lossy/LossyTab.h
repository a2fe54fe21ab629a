// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ComboControl.h"
#include "app/TextControl.h"
#include "convert/ConversionTab.h"

#include <QString>

namespace nurv {

/// The tab that turns every file of its list into one MP3, AAC or Opus file.
class LossyTab final : public ConversionTab {
    Q_OBJECT

public:
    explicit LossyTab(NURVController &controller);

    /// "LAME MP3", "AAC", "Opus".
    ChoiceControl outputFormatMatrix;
    ChoiceControl mp3Matrix;  ///< "CBR", "VBR"
    ChoiceControl aacMatrix;  ///< "CBR", "ABR", "VBR Constrained", "VBR"
    ChoiceControl opusMatrix; ///< "CBR", "VBR Constrained", "VBR"
    SliderControl slider;     ///< MP3, VBR: lame's quality, 0 is the best
    StepperControl stepper;   ///< AAC, VBR: quality, 127 is the best
    TextControl stepperTextField;
    ComboControl comboBox;              ///< kbit/s
    ChoiceControl opusFrameSizeCombo;   ///< milliseconds, as text
    CheckControl &sourceEncodeButton = besideSourceButton;

    // What the next jobs get.
    [[nodiscard]] int sliderLevel() const { return slider.integerValue(); }
    void setSliderLevel(int level) { slider.setIntegerValue(level); }
    [[nodiscard]] int stepperLevel() const { return stepper.integerValue(); }
    void setStepperLevel(int level) { stepper.setIntegerValue(level); }
    [[nodiscard]] int comboLevel() const { return comboBox.integerValue(); }
    void setComboLevel(int level) { comboBox.setIntegerValue(level); }
    [[nodiscard]] QString opusFrameSizeLevel() const { return opusFrameSizeCombo.selectedTitle(); }
    void setOpusFrameSizeLevel(const QString &size) { opusFrameSizeCombo.selectTitle(size); }

    /// Enables the controls that encoder and mode use, and stores the values.
    void displayRelevantOptions() override;
    /// The stepper was moved: its number goes into the field, and is stored.
    void stepperAction();
    /// The number field was edited: a number that is out of range gives way to the last one.
    void controlTextDidChange();

protected:
    [[nodiscard]] std::shared_ptr<Conversion> makeConversion(const Batch &batch, const QString &source) const override;
};

} // namespace nurv
