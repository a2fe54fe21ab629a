// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// What a page makes of a file.
enum class FileVerdict {
    Taken,
    PassedOver,  ///< it is not the page's, and nobody is told
    OtherKind,   ///< it is of a kind that the page does not take
    Damaged,     ///< its name promises a kind that its contents are not
    NotReadable, ///< not with the rights that there are
};

/// A file that the page does not take, and that somebody may want to know of.
struct RefusedFile {
    QString path;
    FileVerdict verdict = FileVerdict::OtherKind;
    bool isGiven = false; ///< by its own name, and not in a folder
};

/// A path as it was given.
struct GivenPath {
    QString name; ///< as written
    QString path; ///< absolute
    bool isFolder = false;
    QString obstacle = {}; ///< why it was not searched, for people; empty: it was
};

/// What was found under the paths that a user gave.
struct FileIntake {
    /// Notes a file that is of interest; `base` as in `bases`.
    void accept(const QString &path, const QString &base = {});
    /// The distinct extensions of the refused files, as written.
    [[nodiscard]] QSet<QString> badExtensions() const;

    QStringList accepted;          ///< in the order found
    /// For each accepted file the folder from which its relative folder counts: the one
    /// that holds the given folder, so that this one's own name comes along. Empty for a
    /// file that was given itself; what the list is too short for was, too.
    QStringList bases;
    QList<GivenPath> given;        ///< in their order
    QList<RefusedFile> refused;    ///< in the order found
    QStringList unreadableNames;   ///< paths whose names are no valid UTF-8, made printable
    QStringList unreadableFolders; ///< folders that could not be listed to their end
    QStringList unreachableFiles;  ///< entries that could not even be looked at
    QStringList linkedFolders;     ///< links to folders that were met on the way, and not followed
    QStringList temporaryFiles;    ///< files of interest, but for names that only jobs give
};

/// What becomes of a file; asked once for each.
using FileLook = std::function<FileVerdict(const QString &path, bool isGiven)>;

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

/// How a search goes about.
struct SearchRules {
    FileLook look;
    StopTest mustStop = {}; ///< asked before every entry
    /// A given path that is no folder must be a regular file that can be read; else even one that does not exist counts
    /// as a file.
    bool givenFilesMustBeReadable = false;
    /// What file browsers leave behind is not taken even when it is given itself.
    bool skipsGivenNames = true;
};

/// Every file at or under `given` that is taken, less the skipped names and, in folders, the
/// temporary ones, in the file system's order, with absolute paths. Their base is the folder that holds the
/// given one, but the given one itself when "." or ".." is all it was called, and for the
/// root. Follows a link that is given and links to files, but no link to a folder that lies in a
/// given one. Looks at each entry once. Any thread; blocks.
void collectFiles(const QString &given, const SearchRules &rules, FileIntake &intake);

/// The message that names what could not be read, and with `tellsSkipped` what else was passed over, the kinds that no
/// tab takes among it; nothing when there is nothing to tell. Of a long list it shows the beginning, and the log has the rest.
[[nodiscard]] std::optional<Alert> skippedAlert(const FileIntake &intake, bool tellsSkipped,
                                                const QStringList &unknownKinds = {});

} // namespace nurv
