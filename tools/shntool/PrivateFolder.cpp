// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PrivateFolder.h"

#include "files/PrivateFolderName.h"
#include "shntool/EndingCleanup.h"
#include "support/SystemCalls.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

namespace fs = std::filesystem;

const std::string kPattern(kPrivateFolderLetters, 'X');

std::string parentOf(const std::string &file)
{
    const size_t slash = file.rfind('/');
    return slash == std::string::npos ? "./" : file.substr(0, slash + 1);
}

/// Open and locked, or not at all.
FileDescriptor lockFolder(const std::string &path)
{
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (folder.isOpen() && ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0)
        folder = FileDescriptor();
    return folder;
}

bool isOurs(const std::string &path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid()
           && (status.st_mode & 077) == 0;
}

} // namespace

void PrivateFolder::sweepBeside(const std::string &file)
{
    std::error_code error;
    for (const auto &entry : fs::directory_iterator(parentOf(file), error)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(kPrivateFolderPrefix)
            || name.size() != kPrivateFolderPrefix.size() + kPrivateFolderLetters)
            continue;
        const std::string path = entry.path().string();
        // Locked until it is gone: somebody may be about to take it for his.
        const FileDescriptor lock = isOurs(path) ? lockFolder(path) : FileDescriptor();
        if (!lock.isOpen())
            continue;
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
}

PrivateFolder::PrivateFolder(const std::string &destination)
{
    constexpr int kTries = 16;
    const std::string parent = parentOf(destination);
    for (int i = 0; i < kTries; ++i) {
        if (tryToMake(parent))
            return;
    }
    failWrite(destination, errno);
}

/// Between its making and its lock another run may take the folder for one that was left.
bool PrivateFolder::tryToMake(const std::string &parent)
{
    m_path = parent;
    m_path += kPrivateFolderPrefix;
    m_path += kPattern;
    const std::unique_lock<std::mutex> hold = EndingCleanup::hold();
    if (!::mkdtemp(m_path.data()))
        failWrite(parent, errno);
    m_lock = lockFolder(m_path);
    struct stat status {};
    if (!m_lock.isOpen() || ::fstat(m_lock.get(), &status) != 0 || status.st_nlink == 0) {
        ::rmdir(m_path.c_str());
        return false;
    }
    if (EndingCleanup *cleanup = EndingCleanup::current())
        cleanup->addFolder(m_path);
    return true;
}

PrivateFolder::~PrivateFolder()
{
    std::error_code error;
    fs::remove_all(m_path, error);
    const std::unique_lock<std::mutex> hold = EndingCleanup::hold();
    if (EndingCleanup *cleanup = EndingCleanup::current())
        cleanup->removeFolder(m_path);
}

} // namespace nurv
