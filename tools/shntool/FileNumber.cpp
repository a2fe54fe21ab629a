// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileNumber.h"

#include <sys/stat.h>

namespace nurv {

std::optional<FileNumber> FileNumber::of(const std::string &name)
{
    struct stat status {};
    if (::stat(name.c_str(), &status) != 0)
        return std::nullopt;
    return FileNumber{.device = status.st_dev, .inode = status.st_ino};
}

std::optional<FileNumber> FileNumber::ofLink(const std::string &name)
{
    struct stat status {};
    if (::lstat(name.c_str(), &status) != 0)
        return std::nullopt;
    return FileNumber{.device = status.st_dev, .inode = status.st_ino};
}

std::optional<FileNumber> FileNumber::ofOpenFile(int descriptor)
{
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileNumber{.device = status.st_dev, .inode = status.st_ino};
}

} // namespace nurv
