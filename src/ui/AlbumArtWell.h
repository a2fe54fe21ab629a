// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tagging/PendingResult.h"

#include <QImage>
#include <QWidget>

class QPushButton;

namespace nurv {

class NURVDragAndDropImageView;
class TagsTab;

/// The well with the cover picture, and its buttons: a file is dropped on it or chosen for it, a picture pasted into
/// it, and the one in it saved or removed. The pixels come from a worker.
class AlbumArtWell final : public QWidget {
    Q_OBJECT

public:
    /// The tab must outlive the well.
    explicit AlbumArtWell(TagsTab &tab, QWidget *parent = nullptr);

    void choose();
    /// Takes the picture of the clipboard, or the picture in the file that was copied.
    void paste();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPushButton *addButton(const QString &title, const QString &objectName, const QString &toolTip);
    void showPicture();

    TagsTab &m_tab;
    NURVDragAndDropImageView *m_view;
    QPushButton *m_chooseButton;
    QPushButton *m_pasteButton;
    QPushButton *m_saveButton;
    QPushButton *m_removeButton;
    PendingResult<QImage> m_scaling;
};

} // namespace nurv
