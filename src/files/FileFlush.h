// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

// All block until the disk has it. False, with the reason in errno, when it does not.

/// Writes a file through to the disk.
[[nodiscard]] bool flushFileToDisk(const QString &path);
/// Writes the names of a folder through to the disk. True where the file system keeps
/// folders by itself.
[[nodiscard]] bool flushFolderToDisk(const QString &path);
/// A file and its name.
[[nodiscard]] bool flushToDisk(const QString &path);

} // namespace nurv
