// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

// File names are bytes to the kernel and text to the system. A name that is no
// valid UTF-8 has no text form that leads back to the file, so it is refused and
// shown, never guessed.

/// The text of a name or path given as bytes (a command-line argument, an entry
/// of a folder); nothing when it is no valid UTF-8. Encoding the text gives the
/// same bytes again.
[[nodiscard]] std::optional<QString> fileNameFromBytes(const QByteArray &name);

/// A name for people to read: bytes that are no UTF-8 are shown as "\xNN".
[[nodiscard]] QString displayName(const QByteArray &name);

/// The entries of one folder, without "." and "..".
struct FolderListing {
    QStringList names;   ///< in the order of the file system
    QStringList refused; ///< display forms of the names that are no valid UTF-8
    QString error;       ///< why the folder could not be read to its end; empty: it was
};

/// Lists a folder. Blocks for as long as the file system needs.
[[nodiscard]] FolderListing listFolder(const QString &path);

} // namespace nurv
