// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/SHNtoolPage.h"

#include "shntool/SHNtoolTab.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QGroupBox>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

SHNtoolPage::SHNtoolPage(SHNtoolTab &tab, QWidget *parent) : ConversionPage(tab, parent), m_shntoolTab(tab)
{
    setObjectName(u"shntoolPage"_s);
    addCommands();
    addLengths();
    addFormats(tab.outputFormatMatrix, {tr("Shorten"), tr("FLAC"), tr("AIFF"), tr("WAV")});
    follow(lastOptionGroup(), tab.outputFormatMatrix);
    addOutputs();
    addDeletionOptions(addOptionGroup(tr("Originals"), u"originalsGroup"_s), tab.deleteOriginalsButton, tab.originals,
                       tr("Removes the source files once what was made of them has been made without an error; of a trim the "
                          "first file always stays"),
                       tr("Decodes source and output again and deletes a source only when its sound is in the output: all of "
                          "it, or for a trim all but the silence"));
    follow(lastOptionGroup(), tab.deleteOriginalsButton);
    finishOptions();
    planOf({&tab.shntoolCommandMatrix, &tab.shnLenMatrix, &tab.outputFormatMatrix, &tab.sourceEncodeButton,
            &tab.deleteOriginalsButton});
}

QString SHNtoolPage::plan() const
{
    const QString command = m_shntoolTab.shntoolCommandMatrix.selectedTitle();
    if (command == u"len")
        return tr("a report of their lengths");
    if (command == u"info")
        return tr("a report of their headers");
    if (command == u"cmp")
        return tr("a comparison of their sound");
    if (command == u"cue")
        return tr("a cue sheet");
    const QString format = m_shntoolTab.outputFormatMatrix.selectedTitle();
    if (command.isEmpty() || format.isEmpty())
        return {};
    const QString kind = format == u"SHN" ? tr("Shorten") : format;
    const QString what = command == u"join"    ? tr("joined to one file, %1")
                         : command == u"split" ? tr("split, %1")
                         : command == u"trim"  ? tr("trimmed, %1")
                         : command == u"pad"   ? tr("padded, %1")
                                               : tr("stripped, %1");
    const QString place = m_shntoolTab.sourceEncodeButton.isOn() ? tr("beside the first file") : placeWords(false);
    return planWords(what.arg(kind), place, m_shntoolTab.deleteOriginalsButton);
}

void SHNtoolPage::addCommands()
{
    QVBoxLayout *const group = addOptionGroup(tr("Command"), u"commandGroup"_s);
    auto *const matrix = new RadioMatrix(lastOptionGroup());
    matrix->setObjectName(u"shntoolCommandMatrix"_s);
    matrix->setAccessibleName(tr("Command"));
    group->addWidget(matrix);
    bind(matrix, m_shntoolTab.shntoolCommandMatrix,
         {tr("&Length"), tr("&Info"), tr("Co&mpare"), tr("&Trim"), tr("&Pad"), tr("Strip"), tr("&Split"), tr("Joi&n"),
          tr("&Cue sheet")});
}

void SHNtoolPage::addLengths()
{
    QVBoxLayout *const group = addOptionGroup(tr("Length report"), u"lengthGroup"_s);
    QWidget *const parent = lastOptionGroup();
    follow(parent, m_shntoolTab.shnLenMatrix);
    auto *const matrix = new RadioMatrix(parent);
    matrix->setObjectName(u"shnLenMatrix"_s);
    matrix->setAccessibleName(tr("Kind of the length report"));
    matrix->setToolTip(tr("By disc: the number between the last \"d\" of the path and the \"t\" behind it, as in show-d1t01.shn"));
    group->addWidget(matrix);
    bind(matrix, m_shntoolTab.shnLenMatrix, {tr("As shntool &writes it"), tr("Set list of all files"), tr("Set lists by &disc*")});
    auto *const names = new QPushButton(tr("Trac&k names…"), parent);
    names->setObjectName(u"namesButton"_s);
    names->setAccessibleName(tr("Track names"));
    names->setToolTip(tr("Names for the tracks of a set list, instead of those of their files"));
    group->addWidget(names, 0, Qt::AlignLeft);
    follow(names, m_shntoolTab.namesButton);
    connect(names, &QPushButton::clicked, &m_shntoolTab, &SHNtoolTab::showNamesWindow);
}

void SHNtoolPage::addOutputs()
{
    QVBoxLayout *const group = addOptionGroup(tr("Outputs"), u"outputsGroup"_s);
    QWidget *const parent = lastOptionGroup();
    follow(parent, m_shntoolTab.sourceEncodeButton);
    addCheckBox(group, m_shntoolTab.sourceEncodeButton, tr("Save &beside the first file"), u"sourceEncodeButton"_s,
                tr("Otherwise one output folder is asked for"), parent);
    addCheckBox(group, m_shntoolTab.previewButton, tr("Pre&view before the start"), u"previewButton"_s,
                tr("The name and the length of each output, which names are taken, and points that do not fit"), parent);
}

} // namespace nurv
