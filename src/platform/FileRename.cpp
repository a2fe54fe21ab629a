// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileRename.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

namespace nurv {

bool renameToFreeName(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat present = {};
    if (::lstat(to.constData(), &present) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.constData(), to.constData()) == 0;
}

} // namespace nurv
