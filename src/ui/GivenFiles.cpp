// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DroppedFiles.h"

#include <QList>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace nurv {

bool hasLocalFiles(const QMimeData *data)
{
    if (data == nullptr || !data->hasUrls())
        return false;
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
}

QStringList localFiles(const QMimeData *data)
{
    QStringList paths;
    if (data == nullptr)
        return paths;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        if (!url.isLocalFile())
            continue;
        QString path = url.toLocalFile();
        // File managers name a dropped folder with a slash at its end.
        while (path.size() > 1 && path.endsWith(u'/'))
            path.chop(1);
        paths.append(path);
    }
    return paths;
}

} // namespace nurv
