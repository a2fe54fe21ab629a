// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/FolderArt.h"

#include "app/PathNames.h"

#include <QDirIterator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

std::optional<QString> onlyPictureBeside(const QStringList &paths)
{
    if (paths.isEmpty())
        return std::nullopt;
    const QString folder = folderOf(paths.first());
    if (!std::all_of(paths.begin(), paths.end(), [&folder](const QString &path) { return folderOf(path) == folder; }))
        return std::nullopt;
    static const QStringList kinds{u"JPG"_s, u"JPEG"_s, u"GIF"_s, u"TIFF"_s, u"PNG"_s};
    std::optional<QString> found;
    for (QDirIterator files(folder, QDir::Files | QDir::Hidden); files.hasNext();) {
        const QString path = files.next();
        if (!kinds.contains(formatWord(path)))
            continue;
        if (found)
            return std::nullopt;
        found = path;
    }
    return found;
}

} // namespace nurv
