// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/DistributionProgram.h"

#include "platform/SearchPath.h"

#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

constexpr char kSelf[] = "/proc/self/exe";

std::string searchPath()
{
    const char *path = std::getenv("PATH");
    return safeSearchPath(path ? path : "");
}

/// The front ends that handed over before they came to this one, as identityOf tells them.
/// Each leaves itself there: copies of one could start each other for ever.
constexpr char kFrontEnds[] = "NURV_SHNTOOL_FRONT_ENDS";

/// "DEVICE:INODE ", nothing of what is no executable file.
std::string identityOf(const std::string &path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || ::access(path.c_str(), X_OK) != 0)
        return {};
    return std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino) + ' ';
}

/// This program among them.
std::string frontEnds()
{
    const char *former = std::getenv(kFrontEnds);
    return (former ? former : " ") + identityOf(kSelf);
}

bool isDistributionProgram(const std::string &path, const std::string &frontEnds)
{
    const std::string identity = identityOf(path);
    return !identity.empty() && frontEnds.find(' ' + identity) == std::string::npos;
}

} // namespace

std::string ownFolder()
{
    return fs::read_symlink(kSelf).parent_path();
}

std::optional<std::string> findDistributionProgram(const std::string &usual)
{
    const std::string passedOver = frontEnds();
    ::setenv(kFrontEnds, passedOver.c_str(), 1);
    if (isDistributionProgram(usual, passedOver))
        return usual;
    for (const std::string &folder : searchedFolders(searchPath())) {
        const std::string path = folder + "/shntool";
        if (isDistributionProgram(path, passedOver))
            return path;
    }
    return std::nullopt;
}

std::string pathWithFolder(const std::string &folder)
{
    const std::string path = searchPath();
    for (const std::string &known : searchedFolders(path)) {
        if (known == folder)
            return path;
    }
    return path + ':' + folder;
}

} // namespace nurv
