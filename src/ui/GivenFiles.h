// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <QUrl>

class QMimeData;

namespace nurv {

/// Files as the desktop or a command line gives them. On the way they are URIs,
/// which carry any bytes; here names that are no valid UTF-8 part from the others.
struct GivenFiles {
    QStringList paths;   ///< absolute, in the order given
    QStringList refused; ///< paths whose names are no valid UTF-8, made printable

    [[nodiscard]] bool isEmpty() const { return paths.isEmpty() && refused.isEmpty(); }
};

/// The URI of a file named on the command line, relative to the current folder.
[[nodiscard]] QString uriOfArgument(const QByteArray &name);

/// The local files among the URLs.
[[nodiscard]] GivenFiles filesOfUrls(const QList<QUrl> &urls);
[[nodiscard]] GivenFiles filesOfUris(const QStringList &uris);
/// The local files in the dragged data.
[[nodiscard]] GivenFiles localFiles(const QMimeData *data);
/// Whether the dragged data names local files.
[[nodiscard]] bool hasLocalFiles(const QMimeData *data);

} // namespace nurv
