// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QSet>
#include <QString>

#include <optional>

namespace nurv {

class BaseTab;
class FileFactsReader;

/// The input files of a tab, one row each: the last path component as text, behind it what
/// the tab has for its other columns, and the whole path as tool tip; what is known of the files in a role of its own.
class FileListModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    /// The facts of a file in a line, with its folder where another file of the list has the same name.
    static constexpr int FactsRole = Qt::UserRole;

    /// The tab must outlive the model.
    explicit FileListModel(const BaseTab &tab, QObject *parent = nullptr);

    [[nodiscard]] FileFactsReader &facts() const { return *m_facts; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

private:
    [[nodiscard]] QString factsLine(const QString &path) const;
    [[nodiscard]] bool isGone(const QString &path) const;
    [[nodiscard]] bool sharesName(const QString &path) const;
    void takeList();

    const BaseTab &m_tab;
    FileFactsReader *m_facts;
    mutable std::optional<QSet<QString>> m_sharedNames; ///< that several files have; nothing until asked for
};

} // namespace nurv
