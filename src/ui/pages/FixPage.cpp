// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/FixPage.h"

#include "fix/FixTab.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

FixPage::FixPage(FixTab &tab, QWidget *parent) : ConversionPage(tab, parent), m_fixTab(tab)
{
    setObjectName(u"fixPage"_s);
    addFormats(tab.outputFormatMatrix, {tr("&Shorten"), tr("F&LAC"), tr("A&IFF"), tr("&WAV")});
    QVBoxLayout *const flac = addOptionGroup(tr("FLAC"), u"flacGroup"_s);
    showWhileEnabled(lastOptionGroup(), tab.flacLevelSlider);
    addSlider(flac, tab.flacLevelSlider, tr("Level"), u"flacLevelSlider"_s,
              tr("Kept for a FLAC encoder of its own; files are made with flac's usual level"), lastOptionGroup());
    addLists();
    addFiles();
    finishOptions();
    planOf({&tab.outputFormatMatrix, &tab.deleteOriginalsButton});
}

QString FixPage::plan() const
{
    const QString format = m_fixTab.outputFormatMatrix.selectedTitle();
    if (format.isEmpty())
        return {};
    return planWords(tr("a fixed set in %1").arg(format == u"SHN" ? tr("Shorten") : format), placeWords(false),
                     m_fixTab.deleteOriginalsButton);
}

void FixPage::addLists()
{
    QVBoxLayout *const group = addOptionGroup(tr("Checksums"), u"checksumGroup"_s);
    QWidget *const parent = lastOptionGroup();
    // AIFF and WAV have no list.
    follow(parent, m_fixTab.md5Label);
    auto *const label = new QLabel(parent);
    label->setObjectName(u"md5Label"_s);
    group->addWidget(label);
    bind(label, m_fixTab.md5Label);
    auto *const lists = new RadioMatrix(parent);
    lists->setObjectName(u"shnMd5Option"_s);
    lists->setAccessibleName(tr("MD5 lists"));
    lists->setToolTip(tr("By disc: the number between the last \"d\" of the path and the \"t\" behind it, as in show-d1t01.shn"));
    group->addWidget(lists);
    bind(lists, m_fixTab.shnMd5Option, {tr("&No MD5"), tr("&1 MD5"), tr("&MD5 by disc*")});
    addCheckBox(group, m_fixTab.flacFingerprintButton, tr("Write finger&prints (FFP)"), u"flacFingerprintButton"_s,
                tr("Writes a list of fingerprints into the output folder"), parent);
}

void FixPage::addFiles()
{
    addDeletionOptions(addOptionGroup(tr("Files"), u"filesGroup"_s), m_fixTab.deleteOriginalsButton, m_fixTab.originals,
                       tr("Removes all source files once the whole set has been made without an error"),
                       tr("Decodes all files again and deletes the sources only when their joined sound is the same, but for "
                          "silence at the end"));
}

} // namespace nurv
