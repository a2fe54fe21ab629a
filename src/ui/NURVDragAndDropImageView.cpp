// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/NURVDragAndDropImageView.h"

#include "ui/GivenFiles.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

#include <optional>

namespace nurv {

namespace {

/// The one file that is dragged, if it is one and no folder. A name that cannot be written as text is none, and counts.
std::optional<QString> draggedFile(const QMimeData *data)
{
    const GivenFiles files = localFiles(data);
    if (files.paths.size() != 1 || !files.refused.isEmpty() || data->urls().size() != 1)
        return std::nullopt;
    return QFileInfo(files.paths.first()).isDir() ? std::nullopt : std::optional(files.paths.first());
}

} // namespace

NURVDragAndDropImageView::NURVDragAndDropImageView(QWidget *parent) : QLabel(parent)
{
    setAcceptDrops(true);
    setAlignment(Qt::AlignCenter);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setAccessibleName(tr("Picture"));
}

void NURVDragAndDropImageView::draggingEntered(QDragEnterEvent *event)
{
    if (!draggedFile(event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void NURVDragAndDropImageView::dropEvent(QDropEvent *event)
{
    // It may have become another one since it came.
    const std::optional<QString> file = draggedFile(event->mimeData());
    if (!file) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT fileDropped(*file);
}

} // namespace nurv
