// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

/// What was found under the paths that a user gave.
struct FileIntake {
    QStringList accepted;           ///< in the order found
    QSet<QString> badExtensions;    ///< extensions of refused files, as written
    QStringList unreadableNames;    ///< names that are no valid UTF-8, made printable
    QStringList unreadableFolders;  ///< folders that could not be listed
};

/// Whether a file is one of interest.
using FileTest = std::function<bool(const QString &path)>;

/// Whether the name is one that file browsers leave behind: ".DS_Store", ".TOC.plist".
[[nodiscard]] bool isSkippedName(const QString &path);

/// Every file at or under `path` that passes `isValid`, in the file system's
/// order. Follows symbolic links, but never into a folder that it is in already.
/// Any thread; blocks.
void collectFiles(const QString &path, const FileTest &isValid, FileIntake &intake);

} // namespace nurv
