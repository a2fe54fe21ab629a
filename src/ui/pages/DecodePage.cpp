// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/DecodePage.h"

#include "convert/DecodeTab.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"

#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

DecodePage::DecodePage(DecodeTab &tab, QWidget *parent) : ConversionPage(tab, parent), m_decodeTab(tab)
{
    setObjectName(u"decodePage"_s);
    addFormats(tab.outputFormatMatrix, {tr("&WAV"), tr("A&IFF")});
    addOutputOptions(tab.sourceDecodeButton, u"sourceDecodeButton"_s, tab.deleteOriginalsButton,
                     tab.originals);
    addFlacOptions();
    finishOptions();
    planOf({&tab.outputFormatMatrix, &tab.sourceDecodeButton, &tab.deleteOriginalsButton});
}

QString DecodePage::plan() const
{
    const QString format = m_decodeTab.outputFormatMatrix.selectedTitle();
    if (format.isEmpty())
        return {};
    return planWords(format, placeWords(m_decodeTab.sourceDecodeButton.isOn()), m_decodeTab.deleteOriginalsButton);
}

void DecodePage::addFlacOptions()
{
    QVBoxLayout *const group = addOptionGroup(QString(), u"flacGroup"_s);
    QGroupBox *const box = lastOptionGroup();
    const auto nameGroup = [this, box] { box->setTitle(m_decodeTab.flacOptionsLabel.text()); };
    nameGroup();
    connect(&m_decodeTab.flacOptionsLabel, &Control::valueChanged, box, nameGroup);
    follow(box, m_decodeTab.flacOptionsLabel);
    addCheckBox(group, m_decodeTab.decodeFlacThroughErrors, tr("&Decode through errors"), u"decodeFlacThroughErrors"_s,
                tr("Goes on after damaged places instead of stopping there"), box);
    addCheckBox(group, m_decodeTab.flacKeepForeignMetadataButton, tr("&Keep foreign metadata"),
                u"flacKeepForeignMetadataButton"_s,
                tr("Writes back the other chunks that the original WAV or AIFF file had"), box);
}

} // namespace nurv
