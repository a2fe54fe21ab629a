// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/LossyPage.h"

#include "lossy/LossyTab.h"
#include "ui/Bindings.h"
#include "ui/LevelWords.h"
#include "ui/OptionWidgets.h"

#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

LossyPage::LossyPage(LossyTab &tab, QWidget *parent) : ConversionPage(tab, parent), m_lossyTab(tab)
{
    setObjectName(u"lossyPage"_s);
    addFormats(tab.outputFormatMatrix, {tr("LAME &MP3"), tr("AAC"), tr("O&pus")});
    addModes();
    addQuality();
    addOutputOptions(tab.sourceEncodeButton, u"sourceEncodeButton"_s, tab.deleteOriginalsButton, tab.originals,
                     tr("Decodes source and output again and deletes a source only when its output is whole and as long"));
    finishOptions();
    planOf({&tab.outputFormatMatrix, &tab.mp3Matrix, &tab.aacMatrix, &tab.opusMatrix, &tab.slider, &tab.stepper, &tab.comboBox,
            &tab.sourceEncodeButton, &tab.deleteOriginalsButton});
}

QString LossyPage::plan() const
{
    const QString encoder = m_lossyTab.outputFormatMatrix.selectedTitle();
    if (encoder.isEmpty())
        return {};
    const ChoiceControl &modes = encoder == u"LAME MP3" ? m_lossyTab.mp3Matrix
                                 : encoder == u"AAC"    ? m_lossyTab.aacMatrix
                                                        : m_lossyTab.opusMatrix;
    const QString quality = m_lossyTab.slider.isEnabled()    ? m_lossyTab.slider.stringValue()
                            : m_lossyTab.stepper.isEnabled() ? m_lossyTab.stepper.stringValue()
                                                             : tr("%1 kbit/s").arg(m_lossyTab.comboBox.text());
    const QString what = u"%1 %2 %3"_s.arg(encoder == u"LAME MP3" ? u"MP3"_s : encoder, modes.selectedTitle(), quality);
    return planWords(what, placeWords(m_lossyTab.sourceEncodeButton.isOn()), m_lossyTab.deleteOriginalsButton);
}

void LossyPage::addModes()
{
    QVBoxLayout *const group = addOptionGroup(tr("Mode"), u"modeGroup"_s);
    QWidget *const parent = lastOptionGroup();
    const auto addMode = [&](ChoiceControl &modes, const QString &objectName, const QString &accessibleName) {
        showWhileEnabled(addChoice(group, modes, QString(), objectName, accessibleName, parent), modes);
    };
    addMode(m_lossyTab.mp3Matrix, u"mp3Matrix"_s, tr("MP3 mode"));
    addMode(m_lossyTab.aacMatrix, u"aacMatrix"_s, tr("AAC mode"));
    addMode(m_lossyTab.opusMatrix, u"opusMatrix"_s, tr("Opus mode"));
}

void LossyPage::addQuality()
{
    QVBoxLayout *const group = addOptionGroup(tr("Bit rate and quality"), u"qualityGroup"_s);
    QWidget *const parent = lastOptionGroup();
    showWhileEnabled(addCombo(group, m_lossyTab.comboBox, tr("Bit ra&te"), tr("kbit/s"), u"comboBox"_s,
                              tr("Bit rate in kilobits per second"), parent),
                     m_lossyTab.comboBox);
    showWhileEnabled(addSlider(group, m_lossyTab.slider, tr("Quality"), u"slider"_s,
                               tr("MP3 quality with VBR: 0 is the best, 9 gives the smallest files"), parent,
                               levelWords::mp3),
                     m_lossyTab.slider);
    showWhileEnabled(addStepper(group, m_lossyTab.stepper, tr("&Quality, 0 to 127"), u"stepper"_s,
                                tr("AAC quality with VBR: 127 is the best, 0 gives the smallest files"), parent),
                     m_lossyTab.stepper);
    showWhileEnabled(addDropDown(group, m_lossyTab.opusFrameSizeCombo, tr("Frame&s"), tr("ms"),
                                 u"opusFrameSizeCombo"_s, tr("Length of an Opus frame in milliseconds"), parent),
                     m_lossyTab.opusFrameSizeCombo);
}

} // namespace nurv
