// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/EncodePage.h"

#include "convert/EncodeTab.h"
#include "ui/Bindings.h"
#include "ui/LevelWords.h"
#include "ui/OptionWidgets.h"

#include <QGroupBox>
#include <QSlider>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

EncodePage::EncodePage(EncodeTab &tab, QWidget *parent) : ConversionPage(tab, parent), m_encodeTab(tab)
{
    setObjectName(u"encodePage"_s);
    addFormats(tab.outputFormatMatrix, {tr("&Shorten"), tr("&WavPack"), tr("F&LAC"), tr("&TTA"), tr("&Monkey's Audio"),
                                        tr("A&pple Lossless")});
    addFlacOptions();
    addOtherOptions();
    addOutputOptions(tab.sourceEncodeButton, u"sourceEncodeButton"_s, tab.deleteOriginalsButton,
                     tab.originals);
    finishOptions();
    planOf({&tab.outputFormatMatrix, &tab.flacSlider, &tab.flacLaxButton, &tab.apeSlider, &tab.wavepackFormatMatrix,
            &tab.sourceEncodeButton, &tab.deleteOriginalsButton});
}

QString EncodePage::plan() const
{
    const QString format = m_encodeTab.outputFormat();
    QString what;
    if (format == u"SHN")
        what = tr("Shorten");
    else if (format == u"WV")
        what = tr("WavPack, %1").arg(m_encodeTab.wavepackFormatMatrix.selectedTitle().toLower());
    else if (format == u"FLAC")
        what = m_encodeTab.flacLaxButton.isOn() ? tr("FLAC, lax") : tr("FLAC %1").arg(m_encodeTab.flacSlider.stringValue());
    else if (format == u"TTA")
        what = tr("TTA");
    else if (format == u"APE")
        what = tr("Monkey's Audio %1").arg(m_encodeTab.apeSlider.stringValue());
    else if (format == u"M4A")
        what = tr("Apple Lossless");
    if (what.isEmpty())
        return {};
    return planWords(what, placeWords(m_encodeTab.sourceEncodeButton.isOn()), m_encodeTab.deleteOriginalsButton);
}

void EncodePage::addFlacOptions()
{
    QVBoxLayout *const group = addOptionGroup(tr("FLAC"), u"flacGroup"_s);
    QWidget *const parent = lastOptionGroup();
    showWhileEnabled(parent, m_encodeTab.flacSlider);
    addSlider(group, m_encodeTab.flacSlider, tr("Level"), u"flacSlider"_s, tr("FLAC compression level"), parent,
              levelWords::flac);
    addCheckBox(group, m_encodeTab.flacLaxButton, tr("Lax (&no level)"), u"flacLaxButton"_s,
                tr("Passes --lax instead of a compression level; no effect on WavPack and Apple Lossless sources"), parent);
    // Behind the binding, which enables the slider as the format does.
    auto *const slider = parent->findChild<QSlider *>(u"flacSlider"_s);
    const auto showUse = [this, slider] {
        slider->setEnabled(m_encodeTab.flacSlider.isEnabled() && !m_encodeTab.flacLaxButton.isOn());
    };
    for (Control *const control :
         {static_cast<Control *>(&m_encodeTab.flacSlider), static_cast<Control *>(&m_encodeTab.flacLaxButton)})
        connect(control, &Control::changed, slider, showUse);
    showUse();
    addCheckBox(group, m_encodeTab.flacVerifyButton, tr("&Verify while encoding"), u"flacVerifyButton"_s,
                tr("Decodes what is being written and compares it with the source"), parent);
    addCheckBox(group, m_encodeTab.flacKeepForeignMetadataButton, tr("&Keep foreign metadata"),
                u"flacKeepForeignMetadataButton"_s,
                tr("Stores the other chunks of WAV and AIFF files in the FLAC file"), parent);
    addCheckBox(group, m_encodeTab.generateFFPButton, tr("Write fingerpr&ints (FFP)"), u"generateFFPButton"_s,
                tr("Writes one list of fingerprints in every output folder when all files are done"), parent);
}

void EncodePage::addOtherOptions()
{
    QVBoxLayout *const shorten = addOptionGroup(tr("Shorten"), u"shortenGroup"_s);
    showWhileEnabled(lastOptionGroup(), m_encodeTab.generateMD5Button);
    addCheckBox(shorten, m_encodeTab.generateMD5Button, tr("Write an M&D5 list"), u"generateMD5Button"_s,
                tr("Writes one MD5 list of all outputs when all files are done"), lastOptionGroup());

    QVBoxLayout *const wavpack = addOptionGroup(tr("WavPack"), u"wavpackGroup"_s);
    showWhileEnabled(lastOptionGroup(), m_encodeTab.wavepackFormatMatrix);
    addChoice(wavpack, m_encodeTab.wavepackFormatMatrix, tr("Mode"), u"wavepackFormatMatrix"_s, tr("WavPack mode"),
              lastOptionGroup());

    QVBoxLayout *const monkeysAudio = addOptionGroup(tr("Monkey's Audio"), u"apeGroup"_s);
    showWhileEnabled(lastOptionGroup(), m_encodeTab.apeSlider);
    addSlider(monkeysAudio, m_encodeTab.apeSlider, tr("Level"), u"apeSlider"_s, tr("Monkey's Audio compression level"),
              lastOptionGroup(), levelWords::monkeysAudio);
}

} // namespace nurv
