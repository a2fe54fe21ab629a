// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FolderEntry.h"

#include "files/FileRename.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace nurv {

namespace {

std::optional<struct stat> look(int folder, const QByteArray &name, int flags)
{
    struct stat facts = {};
    if (::fstatat(folder, name.constData(), &facts, flags) != 0)
        return std::nullopt;
    return facts;
}

/// No name and no move of a file changes when it came into being.
bool isOlder(int file, const timespec &than)
{
    struct statx facts = {};
    if (::statx(file, "", AT_EMPTY_PATH, STATX_BTIME, &facts) != 0 || (facts.stx_mask & STATX_BTIME) == 0)
        return false;
    return facts.stx_btime.tv_sec != than.tv_sec ? facts.stx_btime.tv_sec < than.tv_sec
                                                 : facts.stx_btime.tv_nsec < than.tv_nsec;
}

} // namespace

FolderEntry::FolderEntry(const QString &path)
{
    const QByteArray encoded = QFile::encodeName(path);
    const qsizetype slash = encoded.lastIndexOf('/');
    m_name = encoded.sliced(slash + 1);
    const QByteArray folder = slash < 0 ? QByteArray(".") : encoded.first(slash + 1);
    m_folder = FileDescriptor(::open(folder.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

std::optional<struct stat> FolderEntry::folderFacts() const
{
    struct stat facts = {};
    return m_folder.isOpen() && ::fstat(m_folder.get(), &facts) == 0 ? std::optional(facts) : std::nullopt;
}

std::optional<struct stat> FolderEntry::facts() const
{
    return look(m_folder.get(), m_name, AT_SYMLINK_NOFOLLOW);
}

std::optional<struct stat> FolderEntry::statusOfTarget() const
{
    return look(m_folder.get(), m_name, 0);
}

bool FolderEntry::remove() const
{
    return ::unlinkat(m_folder.get(), m_name.constData(), 0) == 0;
}

bool FolderEntry::moveTo(const QByteArray &path) const
{
    return renameToFreeName(m_folder.get(), m_name, path);
}

timespec FolderEntry::now()
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

bool FolderEntry::changeMode(mode_t mode, const timespec &since) const
{
    const FileDescriptor file(
        ::openat(m_folder.get(), m_name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts = {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return false;
    if (!S_ISREG(facts.st_mode) || facts.st_uid != ::geteuid()) {
        errno = EPERM;
        return false;
    }
    const bool isWider = (mode & ~facts.st_mode & 07777) != 0;
    if (isWider && (facts.st_nlink != 1 || isOlder(file.get(), since))) {
        // What takes something away is done all the same.
        if (::fchmod(file.get(), facts.st_mode & mode & 07777) == 0)
            errno = EPERM;
        return false;
    }
    return ::fchmod(file.get(), mode) == 0;
}

} // namespace nurv
