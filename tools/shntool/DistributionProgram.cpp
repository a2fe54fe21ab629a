// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/DistributionProgram.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include <unistd.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

constexpr char kSelf[] = "/proc/self/exe";

/// Where execvp(3) looks without PATH.
constexpr char kUsualPath[] = "/usr/local/bin:/usr/bin:/bin";

std::string searchPath()
{
    const char *path = std::getenv("PATH");
    return path ? path : kUsualPath;
}

std::vector<std::string> foldersOf(const std::string &path)
{
    std::vector<std::string> folders;
    for (size_t start = 0; start <= path.size();) {
        const size_t end = std::min(path.find(':', start), path.size());
        folders.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return folders;
}

bool isAnotherProgram(const std::string &path)
{
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0 && !fs::equivalent(path, kSelf, error);
}

} // namespace

std::string ownFolder()
{
    return fs::read_symlink(kSelf).parent_path();
}

std::optional<std::string> findDistributionProgram(const std::string &usual)
{
    if (isAnotherProgram(usual))
        return usual;
    for (const std::string &folder : foldersOf(searchPath())) {
        // An empty entry is the current folder.
        const std::string path = (folder.empty() ? "." : folder) + "/shntool";
        if (isAnotherProgram(path))
            return path;
    }
    return std::nullopt;
}

std::string pathWithFolder(const std::string &folder)
{
    const std::string path = searchPath();
    for (const std::string &known : foldersOf(path)) {
        if (known == folder)
            return path;
    }
    return path + ':' + folder;
}

} // namespace nurv
