// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileListModel.h"

#include "app/BaseTab.h"
#include "app/PathNames.h"
#include "platform/PrintableText.h"
#include "ui/ToolTipText.h"

namespace nurv {

FileListModel::FileListModel(const BaseTab &tab, QObject *parent) : QAbstractListModel(parent), m_tab(tab)
{
    connect(&tab, &BaseTab::fileNamesChanged, this, [this] {
        beginResetModel();
        endResetModel();
    });
}

int FileListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_tab.fileNames().size());
}

QVariant FileListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_tab.fileNames().size())
        return {};
    const QString &path = m_tab.fileNames().at(index.row());
    switch (role) {
    case Qt::DisplayRole: return printableLine(lastPathComponent(path));
    case Qt::ToolTipRole: return toolTipText(path);
    case Qt::AccessibleDescriptionRole: return printableLine(path);
    default: return {};
    }
}

} // namespace nurv
