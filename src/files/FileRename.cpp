// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileRename.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

namespace nurv {

bool renameToFreeName(const QByteArray &from, const QByteArray &to)
{
    return renameToFreeName(AT_FDCWD, from, to);
}

bool renameToFreeName(int folder, const QByteArray &entry, const QByteArray &to)
{
    if (::renameat2(folder, entry.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat present = {};
    if (::lstat(to.constData(), &present) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::renameat(folder, entry.constData(), AT_FDCWD, to.constData()) == 0;
}

} // namespace nurv
