// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nurv {

/// The whole text of a regular file, decoded by `decodeText`; nothing when it
/// cannot be read, is no regular file, or is larger than 64 MiB (no text file
/// that the system reads comes near that). `reason`, when given, receives why.
[[nodiscard]] std::optional<QString> readTextFile(const QString &path, QString *reason = nullptr);

/// Logs that no encoding has made a text of a file, a line for each step in which they were tried.
void logUnreadText(const QString &reason);

/// What becomes of a symbolic link, pipe or device that has the name of a file to be written.
enum class LinkAtName {
    Followed, ///< a file that the user has named: what it leads to, or is, is written
    Replaced, ///< a name that was made up in somebody's folder: it makes way
};

/// Writes `text` as UTF-8 by `writeFileAtomically`.
[[nodiscard]] bool writeTextFileAtomically(const QString &path, const QString &text, QString *reason = nullptr,
                                           LinkAtName link = LinkAtName::Followed);

/// Replaces the contents of `path`: written beside it, flushed to the disk,
/// renamed over it. An existing file keeps its permissions,
/// a device, or a pipe that somebody reads, is simply written to unless it makes way. Returns false on failure, with the
/// system's text in `reason`; the old contents are then untouched and nothing is
/// left beside them. Blocks until the disk has the bytes.
[[nodiscard]] bool writeFileAtomically(const QString &path, const QByteArray &contents, QString *reason = nullptr,
                                       LinkAtName link = LinkAtName::Followed);

} // namespace nurv
