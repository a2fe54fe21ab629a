// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Destination.h"

#include "support/SystemCalls.h"
#include "support/ToolError.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr int kLongestLinkChain = 40;

/// Whether it is in the file system of processes, whose links lead to open files,
/// whatever has their names by now.
bool isLinkOfAProcess(const std::filesystem::path &link)
{
    struct statfs system {};
    const std::filesystem::path folder = link.parent_path();
    return ::statfs(folder.empty() ? "." : folder.c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

} // namespace

std::string destinationOf(const std::string &name)
{
    namespace fs = std::filesystem;
    if (name.empty())
        failWrite(name, ENOENT);
    struct stat status {};
    if (::stat(name.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            failWrite(name, EISDIR);
        if (::faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0)
            failWrite(name, errno);
    }
    fs::path path = name;
    for (int links = 0; links < kLongestLinkChain; ++links) {
        std::error_code notALink;
        const fs::path target = fs::read_symlink(path, notALink);
        if (notALink)
            return path;
        if (isLinkOfAProcess(path)) {
            throw ToolError(ToolError::Kind::Write,
                            "cannot write " + name + ": it stands for an open file, which cannot be replaced");
        }
        path = path.parent_path() / target;
    }
    failWrite(name, ELOOP);
}

} // namespace nurv
