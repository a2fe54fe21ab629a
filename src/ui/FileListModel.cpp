// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileListModel.h"

#include "app/BaseTab.h"
#include "app/PathNames.h"
#include "text/PrintableText.h"
#include "ui/ToolTipText.h"

namespace nurv {

FileListModel::FileListModel(const BaseTab &tab, QObject *parent) : QAbstractTableModel(parent), m_tab(tab)
{
    connect(&tab, &BaseTab::fileNamesChanged, this, [this] {
        beginResetModel();
        endResetModel();
    });
    connect(&tab, &BaseTab::columnsChanged, this, [this] {
        beginResetModel();
        endResetModel();
    });
    connect(&tab, &BaseTab::columnTextsChanged, this, [this] {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
    });
}

int FileListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_tab.fileNames().size());
}

int FileListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_tab.columnTitles().size());
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return m_tab.columnTitles().value(section);
}

QVariant FileListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_tab.fileNames().size())
        return {};
    const QString &path = m_tab.fileNames().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return printableLine(index.column() == 0 ? lastPathComponent(path)
                                                 : m_tab.columnText(index.row(), index.column()));
    case Qt::ToolTipRole: return toolTipText(path);
    case Qt::AccessibleDescriptionRole: return printableLine(path);
    default: return {};
    }
}

} // namespace nurv
