// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace nurv {

/// A file and the name that it gets; absolute paths in one folder.
struct Renaming {
    QString from;
    QString to;
};

/// Files renamed to a prefix and their number. Nothing is ever renamed over another file. What was renamed last is
/// noted in the user's state folder, so that it can be undone, also by another start. One thread at a time.
namespace batchRename {

/// The n-th file, from 1 on, to the prefix, n with at least two digits, and its own extension.
[[nodiscard]] QList<Renaming> plan(const QStringList &paths, const QString &prefix);

/// Why no file can be named so, as a sentence; nothing when they can.
[[nodiscard]] std::optional<QString> objection(const QList<Renaming> &plan);
/// The first of the new paths that something has already.
[[nodiscard]] std::optional<QString> takenPath(const QList<Renaming> &plan);
/// "a.flac → Disc1-01.flac", a line for each.
[[nodiscard]] QString text(const QList<Renaming> &plan);

struct Outcome {
    QList<Renaming> done;
    QStringList problems; ///< a line for each that was not renamed, or for what else went wrong
    qsizetype leftCount = 0; ///< how many were not looked at, since it was to end
    bool isRefused = false;  ///< all stay, since a job works on one of them, or since it could not be undone
};

/// Renames one after the other, and goes on behind one that fails. `isUnwanted` (may be empty): asked before each.
[[nodiscard]] Outcome rename(const QList<Renaming> &plan, const std::function<bool()> &isUnwanted = {});

/// Whether there is a note of what was renamed. Does not look at the files.
[[nodiscard]] bool canUndo();
/// Gives the files of the last `rename` the names that they had. A name that was taken meanwhile, and a file that is no
/// longer the one that was renamed, stay as they are, and can be undone later.
[[nodiscard]] Outcome undo(const std::function<bool()> &isUnwanted = {});

} // namespace batchRename

} // namespace nurv
