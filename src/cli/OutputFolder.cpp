// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OutputFolder.h"

#include "app/FileIntake.h"
#include "base/SystemError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QString obstacleAt(const QString &path, const QString &name)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        const QString hint = name.startsWith(u"~/"_s)
            ? u" (the shell puts the home folder in only after a blank: --output-dir %1)"_s.arg(name)
            : QString();
        return u"the output folder does not exist: %1"_s.arg(name) + hint;
    }
    if (!info.isDir())
        return u"the output folder is no folder: %1"_s.arg(name);
    // Asking for the permission says too little: the file system may be read-only.
    QByteArray probe = QFile::encodeName(path) + "/.nurv-XXXXXX";
    const int fd = ::mkstemp(probe.data());
    if (fd < 0)
        return u"the output folder cannot be written: %1 (%2)"_s.arg(name, systemErrorText(errno));
    ::close(fd);
    ::unlink(probe.constData());
    return {};
}

} // namespace

OutputFolder checkOutputFolder(const QString &name)
{
    const QString path = absolutePath(name);
    return {.path = path, .obstacle = obstacleAt(path, name)};
}

QString withHomeFolder(const QString &name)
{
    return name == u"~" || name.startsWith(u"~/"_s) ? QDir::homePath() + name.mid(1) : name;
}

} // namespace nurv
