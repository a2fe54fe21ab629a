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
        // The lowest free one is given, and those below are open. Children inherit it.
        if (::open("/dev/null", O_RDWR) != wanted)
            return false;
    }
    return true;
}

} // namespace nurv
