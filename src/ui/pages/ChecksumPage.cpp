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

ChecksumPage::ChecksumPage(ChecksumTab &tab, QWidget *parent) : TabPage(tab, parent), m_checksumTab(tab)
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
    showWhileEnabled(group, tab.createChecksumOptions);
    addChoice(lists, tab.createChecksumOptions, tr("Kind"), u"createChecksumOptions"_s, tr("Kind of the checksum file"), group);
    addCheckBox(lists, tab.sourceSaveButton, tr("Save in the source &directory"), u"sourceSaveButton"_s,
                tr("Otherwise, and for files of several folders, it is asked where the list goes"), group);
    QVBoxLayout *const others = addOptionGroup(tr("Checking lists"), u"verifyGroup"_s);
    showWhileEnabled(lastOptionGroup(), tab.anyListButton);
    addCheckBox(others, tab.anyListButton, tr("Understand lists of other &programs"), u"anyListButton"_s,
                tr("Takes other marks, encodings, capitals and forms of names as well"), lastOptionGroup());
    finishOptions();
    planOf({&tab.commandOptions, &tab.createChecksumOptions, &tab.sourceSaveButton});

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

QString ChecksumPage::plan() const
{
    switch (m_checksumTab.commandOptions.selectedIndex()) {
    case 0: return tr("decoded and tested");
    case 1: break;
    case 2: return tr("compared with what they list");
    default: return {};
    }
    const QString kind = m_checksumTab.createChecksumOptions.selectedTitle();
    if (kind.isEmpty())
        return {};
    const QString lists = kind == u"All" ? tr("MD5, ST5 and FFP lists") : tr("%1 list").arg(kind);
    const QString place =
        m_checksumTab.sourceSaveButton.isOn() ? tr("in their folder") : tr("into a folder of your choice");
    return u"%1, %2"_s.arg(lists, place);
}

} // namespace nurv
