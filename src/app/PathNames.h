// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

// Paths as texts: nothing here looks at the file system. Slashes at the end of a
// path do not count.

/// What stands after the last slash; empty for the root.
[[nodiscard]] QString lastPathComponent(const QString &path);
/// The folder of a path; "/" for what lies in the root, empty for a mere name.
[[nodiscard]] QString folderOf(const QString &path);
/// What stands after the last point of the last component; empty when there is
/// none, or nothing before or after it.
[[nodiscard]] QString pathExtension(const QString &path);
/// The format word of a file: its extension upper-cased.
[[nodiscard]] QString formatWord(const QString &path);
/// Whether a format word is one of the two that AIFF has.
[[nodiscard]] bool isAiff(const QString &format);
/// Whether a file of that extension is one of sound.
[[nodiscard]] bool isSoundName(const QString &path);
/// The last component without its extension.
[[nodiscard]] QString nameWithoutExtension(const QString &path);
/// folder + "/" + name, with one slash between; only the name without a folder.
[[nodiscard]] QString joinPath(const QString &folder, const QString &name);
/// `folder` joined with the source's name less its extension plus the new one.
[[nodiscard]] QString outputPath(const QString &folder, const QString &source, const QString &extension);

/// The number of the disc that a file belongs to, by its path: "1" of "/shows/show-d1t01.shn". The path is split at
/// every "d", and the last piece at "t", of which the first piece counts: whatever that is.
[[nodiscard]] QString discNumber(const QString &path);

} // namespace nurv
