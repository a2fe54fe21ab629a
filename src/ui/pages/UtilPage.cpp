// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/UtilPage.h"

#include "ui/Bindings.h"
#include "ui/OptionWidgets.h"
#include "ui/RadioMatrix.h"
#include "util/UtilTab.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv {

UtilPage::UtilPage(UtilTab &tab, QWidget *parent) : TabPage(tab, parent), m_utilTab(tab)
{
    setObjectName(u"utilPage"_s);
    addCommands();
    addExtraction();
    addDisc();
    addReplayGain();
    addRename();
    finishOptions();
    planOf({&tab.utilCommandMatrix, &tab.oneTrackButton, &tab.replayGainMatrix});
}

QString UtilPage::plan() const
{
    const QString command = m_utilTab.utilCommandMatrix.selectedTitle();
    if (command == UtilTab::kCdExtraction)
        return u"%1, %2"_s.arg(m_utilTab.oneTrackButton.isOn() ? tr("one WAV file") : tr("a WAV file per track"),
                               placeWords(false));
    if (command == UtilTab::kDvdAudioDisc)
        return tr("a disc image, %1").arg(placeWords(false));
    if (command == UtilTab::kReplayGain)
        return m_utilTab.replayGainMatrix.selectedIndex() == 0 ? tr("replay gain tags") : tr("no replay gain tags");
    if (command == UtilTab::kDeEmphasis)
        return tr("de-emphasised, %1").arg(placeWords(false));
    if (command == UtilTab::kBatchRename)
        return tr("new names");
    return {};
}

void UtilPage::addCommands()
{
    QVBoxLayout *const group = addOptionGroup(tr("Command"), u"commandGroup"_s);
    auto *const matrix = new RadioMatrix(lastOptionGroup());
    matrix->setObjectName(u"utilCommandMatrix"_s);
    matrix->setAccessibleName(tr("Command"));
    group->addWidget(matrix);
    bind(matrix, m_utilTab.utilCommandMatrix,
         {tr("&CD extraction"), tr("&DVD-Audio disc"), tr("FLAC re&play gain"), tr("De-e&mphasis"), tr("&Batch rename")});
    connect(matrix, &RadioMatrix::cellClickedAgain, &m_utilTab, &UtilTab::commandClick);
}

void UtilPage::addExtraction()
{
    QVBoxLayout *const group = addOptionGroup(tr("CD extraction"), u"extractionGroup"_s);
    follow(lastOptionGroup(), m_utilTab.oneTrackButton);
    addCheckBox(group, m_utilTab.oneTrackButton, tr("&One file for all tracks"), u"oneTrackButton"_s,
                tr("Otherwise every track becomes a file"), lastOptionGroup());
}

void UtilPage::addDisc()
{
    QVBoxLayout *const group = addOptionGroup(tr("DVD-Audio disc"), u"discGroup"_s);
    QWidget *const parent = lastOptionGroup();
    follow(parent, m_utilTab.totalTimeLabel);
    auto *const grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    group->addLayout(grid);
    struct Row {
        LabelControl &caption;
        LabelControl &value;
        QString objectName;
    };
    const std::array rows{Row{m_utilTab.totalTimeLabel, m_utilTab.totalTimeField, u"totalTimeField"_s},
                          Row{m_utilTab.totalSizeLabel, m_utilTab.totalSizeField, u"totalSizeField"_s}};
    for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
        auto *const caption = new QLabel(parent);
        auto *const value = new QLabel(parent);
        value->setObjectName(rows[static_cast<std::size_t>(row)].objectName);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        bind(caption, rows[static_cast<std::size_t>(row)].caption);
        bind(value, rows[static_cast<std::size_t>(row)].value);
        grid->addWidget(caption, row, 0);
        grid->addWidget(value, row, 1, Qt::AlignRight);
    }
}

void UtilPage::addReplayGain()
{
    QVBoxLayout *const group = addOptionGroup(tr("Replay gain"), u"replayGainGroup"_s);
    QWidget *const parent = lastOptionGroup();
    follow(parent, m_utilTab.replayGainMatrix);
    auto *const matrix = new RadioMatrix(parent);
    matrix->setObjectName(u"replayGainMatrix"_s);
    matrix->setAccessibleName(tr("Replay gain"));
    matrix->setToolTip(tr("All FLAC files of the list count as one album; only their tags change"));
    group->addWidget(matrix);
    bind(matrix, m_utilTab.replayGainMatrix, {tr("Add tag&s"), tr("Remove &tags")});
}

void UtilPage::addRename()
{
    QVBoxLayout *const group = addOptionGroup(tr("Batch rename"), u"renameGroup"_s);
    QWidget *const parent = lastOptionGroup();
    follow(parent, m_utilTab.renamePreviewButton);
    addCheckBox(group, m_utilTab.renamePreviewButton, tr("Pre&view before the start"), u"renamePreviewButton"_s,
                tr("The old and the new name of each file"), parent);
    auto *const undo = new QPushButton(tr("&Undo last rename"), parent);
    undo->setObjectName(u"undoRenameButton"_s);
    undo->setAccessibleName(tr("Undo last rename"));
    undo->setToolTip(tr("Gives the files that were renamed last their former names"));
    group->addWidget(undo, 0, Qt::AlignLeft);
    follow(undo, m_utilTab.undoRenameButton);
    connect(undo, &QPushButton::clicked, &m_utilTab, &UtilTab::undoRename);
}

} // namespace nurv
