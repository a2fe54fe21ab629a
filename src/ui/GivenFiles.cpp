// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/GivenFiles.h"

#include "app/FileIntake.h"
#include "files/FileNames.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QSysInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool isLocal(const QUrl &url)
{
    const QString host = url.host();
    return url.isLocalFile() && (host.isEmpty() || host == u"localhost" || host == QSysInfo::machineHostName().toLower());
}

/// The bytes of the path. `QUrl::toLocalFile` would lose those that are no UTF-8.
QByteArray nameOf(const QUrl &url)
{
    QByteArray name = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    // File managers name a dropped folder with a slash at its end.
    while (name.size() > 1 && name.endsWith('/'))
        name.chop(1);
    return name;
}

QList<QUrl> urlsOf(const QMimeData *data)
{
    return data != nullptr && data->hasUrls() ? data->urls() : QList<QUrl>();
}

} // namespace

QString uriOfArgument(const QByteArray &name)
{
    const std::optional<QString> text = fileNameFromBytes(name);
    QByteArray path = name;
    if (text)
        path = QFile::encodeName(absolutePath(*text));
    else if (!name.startsWith('/'))
        path = QFile::encodeName(QDir::currentPath()) + '/' + name;
    return u"file://"_s + QString::fromLatin1(path.toPercentEncoding("/"));
}

GivenFiles filesOfUrls(const QList<QUrl> &urls)
{
    GivenFiles files;
    for (const QUrl &url : urls) {
        if (!isLocal(url))
            continue;
        const QByteArray name = nameOf(url);
        const std::optional<QString> path = name.contains('\0') ? std::nullopt : fileNameFromBytes(name);
        if (path)
            files.paths.append(*path);
        else
            files.refused.append(displayName(name));
    }
    return files;
}

GivenFiles filesOfUris(const QStringList &uris)
{
    QList<QUrl> urls;
    urls.reserve(uris.size());
    for (const QString &uri : uris)
        urls.append(QUrl(uri));
    return filesOfUrls(urls);
}

GivenFiles localFiles(const QMimeData *data)
{
    return filesOfUrls(urlsOf(data));
}

bool hasLocalFiles(const QMimeData *data)
{
    const QList<QUrl> urls = urlsOf(data);
    return std::any_of(urls.begin(), urls.end(), isLocal);
}

} // namespace nurv
