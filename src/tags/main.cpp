// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/TagsService.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>

#include <sys/socket.h>

namespace {

constexpr int kSocket = 3;

bool isSocket(int descriptor)
{
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::puts("nurv-tags " NURV_VERSION);
        return 0;
    }
    if (!isSocket(kSocket)) {
        std::fputs("nurv-tags reads tags for nurv, which starts it.\n", stderr);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    return nurv::runTagsService(kSocket);
}
