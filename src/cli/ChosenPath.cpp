// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ChosenPath.h"

#include "app/FileIntake.h"
#include "app/PathNames.h"
#include "base/SystemError.h"
#include "cli/OutputFolder.h"

#include <QFile>

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString obstacleToReading(const QString &path, const QString &name, const QStringList &extensions)
{
    const QByteArray bytes = QFile::encodeName(path);
    struct stat facts = {};
    if (::stat(bytes.constData(), &facts) != 0)
        return u"%1: %2"_s.arg(name, systemErrorText(errno));
    if (!S_ISREG(facts.st_mode))
        return u"%1: it is no regular file"_s.arg(name);
    if (!extensions.isEmpty() && !extensions.contains(pathExtension(path).toLower()))
        return u"%1: not a file of the kind that is needed (%2)"_s.arg(name, extensions.join(u", "_s));
    return ::access(bytes.constData(), R_OK) == 0 ? QString() : u"%1: %2"_s.arg(name, systemErrorText(errno));
}

} // namespace

ChosenPath checkChosenPath(const FileChooser &chooser, const QString &name)
{
    if (chooser.kind == FileChooser::Kind::Folder) {
        const OutputFolder folder = checkOutputFolder(name);
        return {.path = folder.path, .obstacle = folder.obstacle};
    }
    const QString path = absolutePath(name);
    if (chooser.kind != FileChooser::Kind::Save)
        return {.path = path, .obstacle = obstacleToReading(path, name, chooser.extensions)};
    if (isFolder(path) || name.endsWith(u'/'))
        return {.path = path, .obstacle = u"%1: it is a folder"_s.arg(name)};
    return {.path = path, .obstacle = checkOutputFolder(folderOf(path)).obstacle};
}

} // namespace nurv
