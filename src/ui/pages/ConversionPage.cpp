// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/ConversionPage.h"

#include "app/Control.h"
#include "originals/OriginalsControls.h"
#include "settings/SettingsStore.h"
#include "ui/Bindings.h"
#include "ui/DeletionNote.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

QString ConversionPage::planWords(const QString &what, const QString &place,
                                  const CheckControl &deleteOriginals) const
{
    QStringList parts{what, place};
    if (deleteOriginals.isOn() && !deleteOriginals.isHidden())
        parts.append(SettingsStore::instance().integer(u"trashOrDelete"_s) != 0 ? tr("originals to the trash")
                                                                                : tr("originals deleted"));
    return parts.join(u", "_s);
}

void ConversionPage::addFormats(ChoiceControl &formats, const QStringList &shownTitles)
{
    QVBoxLayout *const group = addOptionGroup(tr("Output format"), u"formatGroup"_s);
    auto *const matrix = new RadioMatrix(lastOptionGroup());
    matrix->setObjectName(u"outputFormatMatrix"_s);
    matrix->setAccessibleName(tr("Output format"));
    group->addWidget(matrix);
    bind(matrix, formats, shownTitles);
}

void ConversionPage::addOutputOptions(CheckControl &besideSource, const QString &besideSourceName,
                                      CheckControl &deleteOriginals, OriginalsControls &originals, const QString &proof)
{
    QVBoxLayout *const group = addOptionGroup(tr("Files"), u"filesGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCheckBox(group, besideSource, tr("Save &beside each source file"), besideSourceName,
                tr("Otherwise one output folder is asked for"), parent);
    addCheckBox(group, originals.keepFoldersButton, tr("Rebuild the sour&ce folders"), u"keepFoldersButton"_s,
                tr("Makes the folders of the sources again below the output folder"), parent);
    addDeletionOptions(group, deleteOriginals, originals,
                       tr("Removes each source file once its output has been made without an error"),
                       proof.isEmpty()
                           ? tr("Decodes source and output again and deletes a source only when every sample is the same")
                           : proof);
}

void ConversionPage::addDeletionOptions(QVBoxLayout *group, CheckControl &deleteOriginals, OriginalsControls &originals,
                                        const QString &deletion, const QString &proof)
{
    QWidget *const parent = lastOptionGroup();
    addCheckBox(group, deleteOriginals, tr("Delete &originals afterwards"), u"deleteOriginalsButton"_s, deletion, parent);
    group->addWidget(new DeletionNote(deleteOriginals, originals, parent));
    addCheckBox(group, originals.proveButton, tr("Delete onl&y what is proven"), u"proveButton"_s, proof, parent);
    addCheckBox(group, originals.dropMetadataButton, tr("Even if tags wo&uld be lost"), u"dropMetadataButton"_s,
                tr("Otherwise a source stays whose tags, pictures or chunks have no place in its output"), parent);
}

} // namespace nurv
