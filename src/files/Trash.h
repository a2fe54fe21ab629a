// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

class FolderEntry;

/// Moves a file or folder into the user's trash, by the freedesktop.org trash
/// specification 1.0: the trash of the home folder for what lies on its file
/// system, else the one at the top of the file system that holds the path
/// (".Trash/<uid>" where the administrator made one, else ".Trash-<uid>").
///
/// Never copies and never deletes: on failure returns false with a line in the
/// log, and the file is where it was. May be called from any thread.
///
/// `originalPath`, in the same folder, is what the trash records as the file's path, for
/// one that was renamed meanwhile; `path` itself when empty.
[[nodiscard]] bool moveToTrash(const QString &path, const QString &originalPath = {});
/// The same for a name in a folder that is open already.
[[nodiscard]] bool moveToTrash(const QString &path, const QString &originalPath, const FolderEntry &entry);

} // namespace nurv
