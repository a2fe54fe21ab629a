// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// What was found under the paths that a user gave.
struct FileIntake {
    /// Notes a file that is of interest; `base` as in `bases`.
    void accept(const QString &path, const QString &base = {});

    QStringList accepted;          ///< in the order found
    /// For each accepted file the folder from which its relative folder counts: the one
    /// that holds the given folder, so that this one's own name comes along. Empty for a
    /// file that was given itself; what the list is too short for was, too.
    QStringList bases;
    QSet<QString> badExtensions;   ///< extensions of refused files, as written
    QStringList unreadableNames;   ///< paths whose names are no valid UTF-8, made printable
    QStringList unreadableFolders; ///< folders that could not be listed to their end
    QStringList unreachableFiles;  ///< entries that could not even be looked at
    QStringList linkedFolders;     ///< links to folders that were met on the way, and not followed
    QStringList temporaryFiles;    ///< files of interest, but for names that only jobs give
};

/// Whether a file is one of interest.
using FileTest = std::function<bool(const QString &path)>;

/// Whether a search must give up, since the application quits. Any thread.
using StopTest = std::function<bool()>;

/// Whether the name is one that file browsers leave behind: ".DS_Store", ".TOC.plist".
[[nodiscard]] bool isSkippedName(const QString &path);

/// Whether the path exists and is a folder, or a link to one.
[[nodiscard]] bool isFolder(const QString &path);

/// The absolute path of a name relative to the current folder, without "." and "..",
/// and with one slash between its parts: one file, one path. Links in it stay, but
/// for what stands before a "..", which the system follows too.
[[nodiscard]] QString absolutePath(const QString &name);

/// The folders between the base and the file: "shows/disc1" for /music/shows/disc1/a.wav
/// and the base /music. Empty without a base, for a file right in it and for one that is
/// not below it; never absolute.
[[nodiscard]] QString relativeFolder(const QString &path, const QString &base);

/// Every file at or under `given` that passes `isValid`, less the skipped names and, in folders, the
/// temporary ones, in the file system's order, with absolute paths. Their base is the folder that holds the
/// given one, but the given one itself when "." or ".." is all it was called, and for the
/// root. Follows a link that is given and links to files, but no link to a folder that lies in a
/// given one. A path that does not exist counts as a file. Asks
/// `mustStop` before every entry. Any thread; blocks.
void collectFiles(const QString &given, const FileTest &isValid, FileIntake &intake, const StopTest &mustStop = {});

/// The message that names what could not be read or was passed over; nothing when there is nothing to
/// tell. Of a long list it shows the beginning, and the log has the rest.
[[nodiscard]] std::optional<Alert> unreadableAlert(const FileIntake &intake);

} // namespace nurv
