// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileNames.h"

#include "base/SystemError.h"
#include "files/FolderStream.h"
#include "text/Utf8Text.h"

#include <QFile>

#include <cerrno>
#include <memory>

#include <dirent.h>

using namespace Qt::StringLiterals;

namespace nurv {

std::optional<QString> fileNameFromBytes(const QByteArray &name)
{
    return fromStrictUtf8(name);
}

QString displayName(const QByteArray &name)
{
    QString shown;
    for (qsizetype at = 0; at < name.size();) {
        const qsizetype length = sequenceLengthAt(name, at);
        if (length > 0) {
            shown += fromStrictUtf8(name.sliced(at, length)).value_or(QString());
            at += length;
        } else {
            const auto byte = static_cast<unsigned char>(name.at(at));
            shown += u"\\x%1"_s.arg(QString::number(byte, 16).toUpper());
            ++at;
        }
    }
    return shown;
}

FolderListing listFolder(const QString &path)
{
    FolderListing listing;
    const FolderStream folder(::opendir(QFile::encodeName(path).constData()));
    if (!folder) {
        listing.error = systemErrorText(errno);
        return listing;
    }
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(folder.get());
        if (!entry)
            break;
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        if (const std::optional<QString> text = fileNameFromBytes(name))
            listing.names.append(*text);
        else
            listing.refused.append(displayName(name));
    }
    if (errno != 0)
        listing.error = systemErrorText(errno);
    return listing;
}

} // namespace nurv
