// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QWidget>

class QMenu;
class QPushButton;

namespace nurv {

class FileListView;
class RecentFolders;

/// What stands below the hint of an empty list: buttons that fill it. It is in sight while the list is empty and has the
/// room.
class EmptyListPanel final : public QWidget {
    Q_OBJECT

public:
    /// Lies on the list, which must have a model; the folders must outlive it.
    EmptyListPanel(FileListView *list, const RecentFolders &recentFolders);

    /// In the order of the Tab key.
    [[nodiscard]] QList<QWidget *> buttons() const;

Q_SIGNALS:
    void filesWanted();
    void folderWanted();
    void recentFolderChosen(const QString &path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fillMenu();
    void place();

    FileListView *m_list;
    const RecentFolders &m_recentFolders;
    QPushButton *m_filesButton = nullptr;
    QPushButton *m_folderButton = nullptr;
    QPushButton *m_recentButton = nullptr;
    QMenu *m_recentMenu = nullptr;
};

} // namespace nurv
