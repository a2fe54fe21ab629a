// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPlainTextEdit>

class QMenu;

namespace nurv {

/// A text of one track name a line, with the number of the track beside each line that has a name.
///
/// Its history is somebody else's: the keys and the context menu undo and redo by the actions that it is
/// given. Files that are dropped on it are left to the window around it.
class TrackNameEditor final : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit TrackNameEditor(QWidget *parent = nullptr);

    /// With "\n" at the end of each line.
    [[nodiscard]] QString text() const;
    /// Changes what is not the same already, and leads to the place of the change.
    void showText(const QString &text);
    void setHistoryActions(const QList<QAction *> &actions) { m_historyActions = actions; }
    /// The menu of the right mouse button; the caller owns it.
    [[nodiscard]] QMenu *makeMenu();

    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    class Gutter;

    void placeGutter();
    void paintNumbers(QPaintEvent *event);
    [[nodiscard]] int gutterWidth() const;

    Gutter *m_gutter;
    QList<QAction *> m_historyActions;
};

} // namespace nurv
