// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/GivenFiles.h"

#include <QTreeView>

class QMenu;

namespace nurv {

class BaseTab;
class FileListModel;

/// The list of a tab's input files: shows them, takes files dropped on it, and
/// has the context menu that takes files off again.
class FileListView final : public QTreeView {
    Q_OBJECT

public:
    /// The tab must outlive the view.
    explicit FileListView(BaseTab &tab, QWidget *parent = nullptr);

    /// The context menu; nothing when the tab wants none.
    [[nodiscard]] QMenu *fileListContextMenu() const { return m_menu; }
    [[nodiscard]] QMenu *fileListContextMenuFilterSubMenu() const { return m_filterMenu; }
    /// The width that the names need: 1.1 times the widest, at least 211.
    [[nodiscard]] double neededColumnWidth() const;
    void deleteSelectedRows();

Q_SIGNALS:
    void filesDropped(const GivenFiles &files);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void changeEvent(QEvent *event) override;

private:
    void createContextMenu();
    void rebuildFilterMenu();
    void setDragHovers(bool hovers);
    void widenColumn();
    /// Selects what the tab says is selected.
    void showSelection();
    [[nodiscard]] QList<int> selectedRows() const;

    BaseTab &m_tab;
    FileListModel *m_model;
    QMenu *m_menu = nullptr;
    QMenu *m_filterMenu = nullptr;
    QAction *m_deleteAction = nullptr;
    bool m_dragHovers = false;
};

} // namespace nurv
