// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileListModel.h"

#include "app/BaseTab.h"
#include "app/PathNames.h"
#include "text/PrintableText.h"
#include "ui/FileFactsReader.h"
#include "ui/ToolTipText.h"

#include <QGuiApplication>
#include <QPalette>

using namespace Qt::StringLiterals;

namespace nurv {

FileListModel::FileListModel(const BaseTab &tab, QObject *parent)
    : QAbstractTableModel(parent), m_tab(tab), m_facts(new FileFactsReader(this))
{
    connect(&tab, &BaseTab::fileNamesChanged, this, &FileListModel::takeList);
    connect(&tab, &BaseTab::columnsChanged, this, [this] {
        beginResetModel();
        endResetModel();
    });
    connect(&tab, &BaseTab::columnTextsChanged, this, [this] {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
    });
    takeList();
}

void FileListModel::takeList()
{
    beginResetModel();
    m_sharedNames.reset();
    m_facts->setFiles(m_tab.fileNames());
    endResetModel();
}

bool FileListModel::sharesName(const QString &path) const
{
    if (!m_sharedNames) {
        m_sharedNames.emplace();
        QSet<QString> names;
        names.reserve(m_tab.fileNames().size());
        for (const QString &file : m_tab.fileNames()) {
            const QString name = lastPathComponent(file);
            if (names.contains(name))
                m_sharedNames->insert(name);
            names.insert(name);
        }
    }
    return m_sharedNames->contains(lastPathComponent(path));
}

QString FileListModel::factsLine(const QString &path) const
{
    const QString folder = sharesName(path) ? printableLine(lastPathComponent(folderOf(path))) : QString();
    const FileFacts *const facts = m_facts->facts(path);
    const QString line = facts != nullptr ? fileFactWords::line(path, *facts) : QString();
    return folder.isEmpty() || line.isEmpty() ? folder + line : folder + u" · "_s + line;
}

bool FileListModel::isGone(const QString &path) const
{
    const FileFacts *const facts = m_facts->facts(path);
    return facts != nullptr && !facts->status;
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
    case FactsRole: return factsLine(path);
    case Qt::ForegroundRole:
        return isGone(path) ? QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText)) : QVariant();
    case Qt::ToolTipRole: return toolTipText(path);
    case Qt::AccessibleDescriptionRole: return u"%1 %2"_s.arg(printableLine(path), factsLine(path)).trimmed();
    default: return {};
    }
}

} // namespace nurv
