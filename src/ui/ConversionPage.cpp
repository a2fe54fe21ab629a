// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ConversionPage.h"

#include "app/Control.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

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
                                      CheckControl &deleteOriginals)
{
    QVBoxLayout *const group = addOptionGroup(tr("Files"), u"filesGroup"_s);
    QWidget *const parent = lastOptionGroup();
    addCheckBox(group, besideSource, tr("Save &beside each source file"), besideSourceName,
                tr("Otherwise one output folder is asked for"), parent);
    addCheckBox(group, deleteOriginals, tr("Delete &originals afterwards"), u"deleteOriginalsButton"_s,
                tr("Removes each source file once its output has been made without an error"), parent);
}

} // namespace nurv
