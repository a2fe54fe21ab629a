// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FindProgram.h"

#include "process/SearchPath.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

bool isProgram(const std::string &path)
{
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::string ownFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

std::string searchPath()
{
    const char *path = std::getenv("PATH");
    return safeSearchPath(path ? path : "");
}

} // namespace

std::optional<std::string> findProgram(const std::string &name)
{
    if (name.find('/') != std::string::npos)
        return isProgram(name) ? std::optional(name) : std::nullopt;
    std::vector<std::string> folders = searchedFolders(searchPath());
    folders.push_back(ownFolder());
    for (const std::string &folder : folders) {
        std::string path = folder + '/' + name;
        if (isProgram(path))
            return path;
    }
    return std::nullopt;
}

} // namespace nurv
