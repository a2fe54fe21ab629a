// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <memory>
#include <vector>

class QLabel;
class QListView;
class QMenu;
class QPushButton;

namespace nurv {

class BatchWatch;
class NURVTask;
class NURVTaskQueue;
class StatusListModel;
class StatusQueueCell;
class UnfinishedFiles;

/// The floating window with one row per job of the queue.
///
/// Comes to the front once per batch, when the queue asks for it, and goes when
/// the queue says so; a user who closes it in between keeps it closed until the
/// next batch.
class StatusWindow final : public QWidget {
    Q_OBJECT

public:
    /// Queue, batch and files must outlive the window.
    StatusWindow(NURVTaskQueue &queue, BatchWatch &batch, UnfinishedFiles &unfinished, QWidget *parent = nullptr);

    /// Shows the window, in front and with the keyboard.
    void bringToFront();
    /// A batch may begin: its first job shows the window, also when the user has closed it since the last one.
    void expectBatch() { m_wasBroughtUp = false; }
    /// Keeps place and size for the next start.
    void saveState() const;
    [[nodiscard]] QListView *list() const { return m_list; }
    [[nodiscard]] QMenu *contextMenu() const { return m_menu; }

Q_SIGNALS:
    /// There are rows of failed jobs, or no longer.
    void hasErrorsChanged(bool hasErrors);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void createWidgets();
    void layOut();
    void createContextMenu();
    void connectAll();
    void requestPanel();
    /// Shows the window, in front, and leaves the keyboard where it is.
    void appear();
    /// New rows behind others that have all ended are where the user looks.
    void showNewRows(int first);
    void closePanel();
    void showCount();
    void showBatch();
    void showPause();
    void prepareMenu();
    void cancelSelected();
    void cancelLater(const std::shared_ptr<NURVTask> &task);
    void showReport();
    [[nodiscard]] std::vector<std::shared_ptr<NURVTask>> selectedTasks() const;

    NURVTaskQueue &m_queue;
    BatchWatch &m_batch;
    UnfinishedFiles &m_unfinished;
    StatusListModel *m_model;
    StatusQueueCell *m_cell;
    QListView *m_list = nullptr;
    QLabel *m_batchLabel = nullptr; ///< what the strip of the main window says
    QLabel *m_countLabel = nullptr;
    QPushButton *m_pauseButton = nullptr;
    QPushButton *m_putBackButton = nullptr;
    QPushButton *m_removeErrorsButton = nullptr;
    QPushButton *m_cancelAllButton = nullptr;
    QMenu *m_menu = nullptr;
    QAction *m_cancelAction = nullptr;
    QAction *m_reportAction = nullptr;
    QAction *m_putBackAction = nullptr;
    QAction *m_cancelAllAction = nullptr;
    QAction *m_removeErrorsAction = nullptr;
    int m_animationTimer = 0;
    bool m_wasBroughtUp = false; ///< in this batch
    bool m_showIsPending = false;
    bool m_hasPlace = false; ///< on the screen, now or at the last start
    bool m_hasErrors = false;
};

} // namespace nurv
