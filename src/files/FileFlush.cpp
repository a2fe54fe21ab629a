// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileFlush.h"

#include "files/FileDescriptor.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace nurv {

namespace {

bool flush(const QString &path, int flags)
{
    int error = 0;
    {
        const FileDescriptor file(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC));
        if (!file.isOpen() || ::fsync(file.get()) != 0)
            error = errno;
    }
    errno = error;
    return error == 0;
}

} // namespace

bool flushFileToDisk(const QString &path)
{
    return flush(path, O_RDONLY);
}

bool flushFolderToDisk(const QString &path)
{
    // Some file systems keep folders by themselves.
    return flush(path, O_RDONLY | O_DIRECTORY) || errno == EINVAL || errno == ENOTSUP;
}

bool flushToDisk(const QString &path)
{
    return flushFileToDisk(path) && flushFolderToDisk(QFileInfo(path).absolutePath());
}

} // namespace nurv
