// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>

namespace nurv {

class BaseTab;

/// The input files of a tab, one row each: the last path component as text, behind it what
/// the tab has for its other columns, and the whole path as tool tip.
class FileListModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    /// The tab must outlive the model.
    explicit FileListModel(const BaseTab &tab, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

private:
    const BaseTab &m_tab;
};

} // namespace nurv
