// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace nurv::fixedFileLists {

// Which checksum lists a fix job writes. Nothing here writes a file.

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

} // namespace nurv::fixedFileLists
