// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QPushButton;

namespace nurv {

class BatchWatch;
class ProgressLine;

/// The strip at the bottom of the main window: how far the jobs are, and after them what they made, until the next
/// batch.
///
///     running   [ ▆▆▆▆▆▆▁▁▁▁  7 of 12 · 2 failed · about 3 min left ]
///     over      [ 1 failed · 11 files made in Music · 2 min 14 s ]  (Open folder)  (Report)
///
/// The line is a button for the status window.
class ProgressStrip final : public QWidget {
    Q_OBJECT

public:
    /// The batch must outlive the strip.
    explicit ProgressStrip(BatchWatch &batch, QWidget *parent = nullptr);

    [[nodiscard]] ProgressLine *line() const { return m_line; }
    [[nodiscard]] QPushButton *folderButton() const { return m_folderButton; }
    [[nodiscard]] QPushButton *reportButton() const { return m_reportButton; }

Q_SIGNALS:
    void clicked();
    /// The user wants to see the folder of what was made.
    void folderRequested(const QString &path);

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void createWidgets();
    void layOut();
    /// The page above keeps its place when the buttons come and go.
    void keepHeight();
    void connectAll();
    void showBatch();

    BatchWatch &m_batch;
    ProgressLine *m_line = nullptr;
    QPushButton *m_folderButton = nullptr;
    QPushButton *m_reportButton = nullptr;
};

} // namespace nurv
