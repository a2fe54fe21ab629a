// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/LeftoverRemoval.h"

#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "files/FolderStream.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QByteArray nameOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

FileDescriptor openFolder(const QByteArray &path, int flags = 0)
{
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags));
}

FileDescriptor openFolderOf(const QByteArray &path)
{
    return openFolder(path.left(path.lastIndexOf('/') + 1));
}

bool isWhatWasFound(const FileDescriptor &folder, const Leftover &leftover)
{
    struct stat facts = {};
    return ::fstatat(folder.get(), nameOf(leftover.path).constData(), &facts, AT_SYMLINK_NOFOLLOW) == 0
           && leftover.identity.isSameAs(FileIdentity::of(facts), true);
}

/// Removes the regular files in a folder that nobody else knows of. Returns the errno of
/// a failure, else 0; a folder with anything else in it stays.
int emptyPrivateFolder(const QByteArray &path)
{
    FileDescriptor folder = openFolder(path, O_NOFOLLOW);
    const int copy = folder.isOpen() ? ::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0) : -1;
    const FolderStream entries(copy < 0 ? nullptr : ::fdopendir(copy));
    if (!entries)
        return errno;
    while (const dirent *const entry = ::readdir(entries.get())) {
        struct stat facts = {};
        if (::fstatat(folder.get(), entry->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
            return errno;
        if (S_ISREG(facts.st_mode) && facts.st_uid == ::geteuid() && ::unlinkat(folder.get(), entry->d_name, 0) != 0) {
            return errno;
        }
    }
    return 0;
}

int removeFile(const FileDescriptor &folder, const Leftover &leftover)
{
    const QByteArray name = nameOf(leftover.path);
    struct stat facts = {};
    if (::fstatat(folder.get(), name.constData(), &facts, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    const bool isFolder = S_ISDIR(facts.st_mode);
    if (isFolder) {
        if (const int error = emptyPrivateFolder(leftover.path))
            return error;
    }
    return ::unlinkat(folder.get(), name.constData(), isFolder ? AT_REMOVEDIR : 0) == 0 ? 0 : errno;
}

int putBack(const FileDescriptor &folder, const Leftover &leftover)
{
    const FileDescriptor target = openFolderOf(leftover.output);
    if (!target.isOpen())
        return errno;
    const QByteArray from = nameOf(leftover.path);
    const QByteArray to = nameOf(leftover.output);
    if (::renameat2(folder.get(), from.constData(), target.get(), to.constData(), RENAME_NOREPLACE) != 0) {
        // File systems that cannot rename so can still give a second name.
        if (errno != EINVAL && errno != ENOSYS)
            return errno;
        if (::linkat(folder.get(), from.constData(), target.get(), to.constData(), 0) != 0
            || ::unlinkat(folder.get(), from.constData(), 0) != 0) {
            return errno;
        }
    }
    // On the disk before the journal, which knows the other name, is gone.
    return ::fsync(target.get()) == 0 ? 0 : errno;
}

} // namespace

void carryOut(Leftover &leftover)
{
    leftover.outcome = Leftover::Outcome::Left;
    if (leftover.plan != Leftover::Plan::Remove && leftover.plan != Leftover::Plan::PutBack)
        return;
    const FileDescriptor folder = openFolderOf(leftover.path);
    if (!folder.isOpen() || !isWhatWasFound(folder, leftover)) {
        leftover.reason = folder.isOpen() ? u"it has changed just now"_s : systemErrorText(errno);
        return;
    }
    const bool isRemoval = leftover.plan == Leftover::Plan::Remove;
    if (const int error = isRemoval ? removeFile(folder, leftover) : putBack(folder, leftover))
        leftover.reason = systemErrorText(error);
    else
        leftover.outcome = isRemoval ? Leftover::Outcome::Removed : Leftover::Outcome::PutBack;
}

} // namespace nurv
