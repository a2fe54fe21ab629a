// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QAction;
class QLabel;
class QPushButton;

namespace nurv {

class TrackNameEditor;
class TrackNameInputController;

/// The track-names window. It stands beside the others and is shown and hidden by its controller;
/// closing it and Escape cancel.
///
///     Names, one a line:          Undo  Redo
///     +------------------------------------+
///     |  1 | Intro                         |
///     |  2 | Song                          |
///     +------------------------------------+
///     2 names for 3 files: 1 missing      Loaded from “set.txt”.
///     Load…  Trim…  Clear        Cancel   OK
class TrackNameWindow final : public QDialog {
    Q_OBJECT

public:
    /// The controller must outlive the window.
    explicit TrackNameWindow(TrackNameInputController &controller, QWidget *parent = nullptr);

    [[nodiscard]] TrackNameEditor *editor() const { return m_editor; }
    /// Keeps place and size for the next start.
    void saveState() const;

    void accept() override;
    void reject() override;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void createEditor();
    void createHistory();
    void createButtons();
    void layOut();
    QPushButton *makeButton(const QString &title, const QString &objectName, const QString &hint);
    void bringToFront();
    void showState();
    void showHistory();
    void showNote();

    TrackNameInputController &m_controller;
    TrackNameEditor *m_editor = nullptr;
    QAction *m_undoAction = nullptr;
    QAction *m_redoAction = nullptr;
    QPushButton *m_undoButton = nullptr;
    QPushButton *m_redoButton = nullptr;
    QPushButton *m_loadButton = nullptr;
    QPushButton *m_trimButton = nullptr;
    QPushButton *m_clearButton = nullptr;
    QPushButton *m_cancelButton = nullptr;
    QPushButton *m_okButton = nullptr;
    QLabel *m_count = nullptr;
    QLabel *m_note = nullptr;
    bool m_wasShown = false;
};

} // namespace nurv
