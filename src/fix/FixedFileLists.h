// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace nurv::fixedFileLists {

// Which checksum lists a fix job writes, and what of their entries tells nothing. Nothing here writes a file.

/// The number of the disc that a file belongs to, by its path: "1" of "/shows/show-d1t01.shn". The path is split at every
/// "d", and the last piece at "t", of which the first piece counts: whatever that is.
[[nodiscard]] QString discNumber(const QString &path);

/// A list and the places of the files in it.
struct DiscList {
    QString fileName;
    QList<qsizetype> places;
};
/// One list per disc, in the order in which the paths name them first. A file name never holds a "/".
[[nodiscard]] QList<DiscList> listsByDisc(const QStringList &paths);

/// What is wrong with a file that an MD5 list is to hold: why it cannot be read. Empty when it can be.
[[nodiscard]] QString faultOfFile(const QString &path);
/// Whether the entry of a fingerprint list holds a fingerprint: not a complaint, and not that of a stream without one.
[[nodiscard]] bool holdsFingerprint(const QString &entry);

} // namespace nurv::fixedFileLists
