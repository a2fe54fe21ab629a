// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <optional>

#include <sys/stat.h>
#include <sys/types.h>
#include <time.h>

namespace nurv {

/// A name in a folder that is held open: what is done to it is done in that very folder, also
/// when somebody puts another one in its place meanwhile. Any thread.
class FolderEntry {
public:
    /// Opens the folder of the path; links on the way to it are followed.
    explicit FolderEntry(const QString &path);

    [[nodiscard]] bool isFolderOpen() const { return m_folder.isOpen(); }
    /// What the system tells of the folder; nothing when it could not be opened.
    [[nodiscard]] std::optional<struct stat> folderFacts() const;

    /// What the system tells of the name itself, a link included; nothing without one.
    [[nodiscard]] std::optional<struct stat> facts() const;
    /// Of what a link leads to.
    [[nodiscard]] std::optional<struct stat> statusOfTarget() const;

    // The following return false with the reason in errno.

    /// Removes a file or link for good, no folder.
    [[nodiscard]] bool remove() const;
    /// Gives it another name on the same file system that nothing has; see renameToFreeName.
    [[nodiscard]] bool moveTo(const QByteArray &path) const;
    /// Changes the permissions of a regular file of this user, of no link. Of one that has other
    /// names as well, or that came into being before `since`, they are not widened: somebody may
    /// have put it here for that. Where the file system does not tell when, they are.
    [[nodiscard]] bool changeMode(mode_t mode, const timespec &since) const;

    /// For `changeMode`: now, by the clock of file systems.
    [[nodiscard]] static timespec now();

private:
    FileDescriptor m_folder;
    QByteArray m_name;
};

} // namespace nurv
