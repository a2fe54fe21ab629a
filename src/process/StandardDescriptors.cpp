// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/StandardDescriptors.h"

#include <initializer_list>

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

namespace nurv {

bool openStandardDescriptors()
{
    for (const int wanted : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(wanted, F_GETFD) >= 0 || errno != EBADF)
            continue;
        // The lowest free one is given, and those below are open. Children inherit it. A result that is written to
        // standard output would be lost there: writing fails instead.
        if (::open("/dev/null", wanted == STDOUT_FILENO ? O_RDONLY : O_RDWR) != wanted)
            return false;
    }
    return true;
}

} // namespace nurv
