// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/ChecksumPage.h"

#include "checksum/ChecksumTab.h"
#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"

#include <QGroupBox>
#include <QGuiApplication>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace nurv {

ChecksumPage::ChecksumPage(ChecksumTab &tab, QWidget *parent) : TabPage(tab, parent)
{
    setObjectName(u"checksumPage"_s);
    QVBoxLayout *const commands = addOptionGroup(tr("Command"), u"commandGroup"_s);
    auto *const matrix = new RadioMatrix(lastOptionGroup());
    matrix->setObjectName(u"commandOptions"_s);
    matrix->setAccessibleName(tr("Command"));
    commands->addWidget(matrix);
    bind(matrix, tab.commandOptions, {tr("&Verify lossless files"), tr("Create check&sum file"), tr("Ver&ify checksum files")});

    QVBoxLayout *const lists = addOptionGroup(tr("Checksum file"), u"createGroup"_s);
    QWidget *const group = lastOptionGroup();
    addChoice(lists, tab.createChecksumOptions, tr("Kind"), u"createChecksumOptions"_s, tr("Kind of the checksum file"), group);
    addCheckBox(lists, tab.sourceSaveButton, tr("Save in the source &directory"), u"sourceSaveButton"_s,
                tr("Otherwise, and for files of several folders, it is asked where the list goes"), group);
    QVBoxLayout *const others = addOptionGroup(tr("Checking lists"), u"verifyGroup"_s);
    addCheckBox(others, tab.anyListButton, tr("Understand lists of other &programs"), u"anyListButton"_s,
                tr("Takes other marks, encodings, capitals and forms of names as well"), lastOptionGroup());
    finishOptions();

    // That work blocks this thread.
    connect(&tab, &ChecksumTab::longWorkBegan, this, [this](const QString &what) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        showWork(what);
    });
    connect(&tab, &ChecksumTab::longWorkEnded, this, [this] {
        showWork(QString());
        QGuiApplication::restoreOverrideCursor();
    });
}

} // namespace nurv
