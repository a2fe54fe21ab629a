// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/LossyPage.h"

#include "lossy/LossyTab.h"
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
}

void LossyPage::addModes()
{
    QVBoxLayout *const group = addOptionGroup(tr("Mode"), u"modeGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addChoice(group, m_lossyTab.mp3Matrix, tr("MP3"), u"mp3Matrix"_s, tr("MP3 mode"), parent);
    addChoice(group, m_lossyTab.aacMatrix, tr("AAC"), u"aacMatrix"_s, tr("AAC mode"), parent);
    addChoice(group, m_lossyTab.opusMatrix, tr("Opus"), u"opusMatrix"_s, tr("Opus mode"), parent);
}

void LossyPage::addQuality()
{
    QVBoxLayout *const group = addOptionGroup(tr("Bit rate and quality"), u"qualityGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCombo(group, m_lossyTab.comboBox, tr("Bit ra&te"), tr("kbit/s"), u"comboBox"_s, tr("Bit rate in kilobits per second"),
             parent);
    addSlider(group, m_lossyTab.slider, tr("MP3 VBR"), u"slider"_s,
              tr("MP3 quality with VBR: 0 is the best, 9 gives the smallest files"), parent);
    addStepper(group, m_lossyTab.stepper, tr("AAC &VBR"), u"stepper"_s,
               tr("AAC quality with VBR: 127 is the best, 0 gives the smallest files"), parent);
    addDropDown(group, m_lossyTab.opusFrameSizeCombo, tr("Opus frame&s"), tr("ms"), u"opusFrameSizeCombo"_s,
                tr("Length of an Opus frame in milliseconds"), parent);
}

} // namespace nurv
