// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DecodePage.h"

#include "convert/DecodeTab.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

DecodePage::DecodePage(DecodeTab &tab, QWidget *parent) : TabPage(tab, parent), m_decodeTab(tab)
{
    setObjectName(u"decodePage"_s);
    addFormats();
    addOutputOptions();
    addFlacOptions();
    finishOptions();
}

void DecodePage::addFormats()
{
    QVBoxLayout *const group = addOptionGroup(tr("Output format"), u"formatGroup"_s);
    auto *const formats = new RadioMatrix(lastOptionGroup());
    formats->setObjectName(u"outputFormatMatrix"_s);
    formats->setAccessibleName(tr("Output format"));
    group->addWidget(formats);
    bind(formats, m_decodeTab.outputFormatMatrix, {tr("&WAV"), tr("A&IFF")});
}

void DecodePage::addFlacOptions()
{
    QVBoxLayout *const group = addOptionGroup(QString(), u"flacGroup"_s);
    QGroupBox *const box = lastOptionGroup();
    const auto nameGroup = [this, box] { box->setTitle(m_decodeTab.flacOptionsLabel.text()); };
    nameGroup();
    connect(&m_decodeTab.flacOptionsLabel, &Control::valueChanged, box, nameGroup);
    follow(box, m_decodeTab.flacOptionsLabel);
    addCheckBox(group, m_decodeTab.decodeFlacThroughErrors, tr("Decode through &errors"), u"decodeFlacThroughErrors"_s,
                tr("Goes on after damaged places instead of stopping there"), box);
    addCheckBox(group, m_decodeTab.flacKeepForeignMetadataButton, tr("&Keep foreign metadata"),
                u"flacKeepForeignMetadataButton"_s,
                tr("Writes back the other chunks that the original WAV or AIFF file had"), box);
}

void DecodePage::addOutputOptions()
{
    QVBoxLayout *const group = addOptionGroup(tr("Files"), u"filesGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCheckBox(group, m_decodeTab.sourceDecodeButton, tr("Save &beside each source file"), u"sourceDecodeButton"_s,
                tr("Otherwise one output folder is asked for"), parent);
    addCheckBox(group, m_decodeTab.deleteOriginalsButton, tr("Delete &originals afterwards"),
                u"deleteOriginalsButton"_s,
                tr("Removes each source file once its output has been made without an error"), parent);
}

} // namespace nurv
