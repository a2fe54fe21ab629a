// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

class QMimeData;

namespace nurv {

/// A well for a picture that takes one file at a time: drags of several, of folders and of anything else are refused. What
/// the file holds is for whoever is told of it.
class NURVDragAndDropImageView final : public QLabel {
    Q_OBJECT

public:
    explicit NURVDragAndDropImageView(QWidget *parent = nullptr);

Q_SIGNALS:
    void fileDropped(const QString &path);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { draggingEntered(event); }
    void dropEvent(QDropEvent *event) override;

private:
    static void draggingEntered(QDragEnterEvent *event);
};

} // namespace nurv
