// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/GivenFiles.h"

#include <QTreeView>

class QMenu;

namespace nurv {

class BaseTab;
class FileFactsReader;
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
    /// Where the hint ends that an empty list shows; in the coordinates of the viewport.
    [[nodiscard]] qreal hintBottom() const;
    /// What is known of the files of the list.
    [[nodiscard]] FileFactsReader &facts() const;

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
    void showEvent(QShowEvent *event) override;

private:
    /// In the room behind the name: as much of them as it takes, the end first.
    void drawFacts(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const;
    void createContextMenu();
    void rebuildFilterMenu();
    void setDragHovers(bool hovers);
    void widenColumn();
    /// Selects what the tab says is selected.
    void showSelection();
    [[nodiscard]] QList<int> selectedRows() const;
    /// The places of the hint's two lines in an empty list.
    struct HintPlaces {
        QFont font; ///< of the first line
        QRectF hint;
        QRectF kinds;
    };
    [[nodiscard]] HintPlaces hintPlaces() const;
    /// The kinds of files that the page takes, for people.
    [[nodiscard]] QString kindsTaken() const;

    BaseTab &m_tab;
    FileListModel *m_model;
    QMenu *m_menu = nullptr;
    QMenu *m_filterMenu = nullptr;
    QAction *m_deleteAction = nullptr;
    bool m_dragHovers = false;
};

} // namespace nurv
