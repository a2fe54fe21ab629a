// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/TextFile.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "files/FileStatus.h"
#include "files/UnnamedFile.h"
#include "files/WriteAll.h"
#include "text/DecodeText.h"

#include <QFile>
#include <QRandomGenerator>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>

namespace nurv {

namespace {

constexpr qint64 kLargestTextFile = 64 * 1024 * 1024;

bool failWithErrno(QString *reason)
{
    if (reason)
        *reason = systemErrorText(errno);
    return false;
}

// The file that a link leads to, also when that file does not exist yet.
QByteArray resolved(const QByteArray &path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.constData(), nullptr),
                                                           &std::free);
    if (real)
        return QByteArray(real.get());
    std::array<char, 4096> target;
    const ssize_t length = ::readlink(path.constData(), target.data(), target.size());
    if (length <= 0 || length == static_cast<ssize_t>(target.size()))
        return path;
    const QByteArray link(target.data(), length);
    return link.startsWith('/') ? link : path.first(path.lastIndexOf('/') + 1) + link;
}

bool writeInPlace(const QByteArray &path, const QByteArray &contents, QString *reason)
{
    // Non-blocking until it is open: nobody may be reading from a pipe.
    FileDescriptor file(::open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file.isOpen() || ::fcntl(file.get(), F_SETFL, 0) != 0 || !writeAll(file.get(), contents) || !file.close())
        return failWithErrno(reason);
    return true;
}

// The name does not grow with the target's: a name of the greatest length must
// still have a neighbour.
QByteArray neighbourName(const QByteArray &path)
{
    constexpr int kLetters = 12;
    const QByteArray random = QByteArray::number(QRandomGenerator::global()->generate64(), 36);
    return path.first(path.lastIndexOf('/') + 1) + ".nurv-" + random.rightJustified(kLetters, '0', true) + ".part";
}

// The contents of a file must be on the disk before its new name is, and the name
// itself is in the folder. Not every file system can flush a folder.
void flushFolderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray folder = slash < 0 ? QByteArray(".") : path.first(slash + 1);
    const FileDescriptor descriptor(
        ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen())
        ::fsync(descriptor.get());
}

/// Under a name that is free. Returns false with the reason in errno: EEXIST when something
/// has that name, EOPNOTSUPP where there are no files without a name.
bool writeUnnamed(const QByteArray &path, const QByteArray &contents)
{
    const QByteArray folder = path.first(path.lastIndexOf('/') + 1);
    FileDescriptor file = unnamedFile::open(folder.isEmpty() ? "." : folder.toStdString());
    if (!file.isOpen()) {
        errno = EOPNOTSUPP;
        return false;
    }
    return writeAll(file.get(), contents) && ::fsync(file.get()) == 0
           && unnamedFile::name(file, path.toStdString());
}

bool writeNeighbour(FileDescriptor &file, const QByteArray &contents, const struct stat *old)
{
    if (old) {
        // Group first: changing it clears permission bits. Only the owner's own
        // groups are possible; another group must then not gain what the old had.
        mode_t mode = old->st_mode & 07777;
        if (::fchown(file.get(), old->st_uid, old->st_gid) != 0
            && ::fchown(file.get(), static_cast<uid_t>(-1), old->st_gid) != 0)
            mode &= ~static_cast<mode_t>(06070);
        if (::fchmod(file.get(), mode) != 0)
            return false;
    }
    return writeAll(file.get(), contents) && ::fsync(file.get()) == 0 && file.close();
}

} // namespace

std::optional<QString> readTextFile(const QString &path, QString *reason)
{
    // Non-blocking, so that a pipe without a writer cannot hold the caller.
    const FileDescriptor file(::open(QFile::encodeName(path).constData(),
                                     O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts = {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0) {
        failWithErrno(reason);
        return std::nullopt;
    }
    if (!S_ISREG(facts.st_mode)) {
        errno = EISDIR;
        if (S_ISDIR(facts.st_mode))
            failWithErrno(reason);
        else if (reason)
            *reason = QStringLiteral("It is a pipe or a device, not a file");
        return std::nullopt;
    }
    QFile reader;
    QByteArray bytes;
    if (facts.st_size <= kLargestTextFile
        && reader.open(file.get(), QIODevice::ReadOnly, QFileDevice::DontCloseHandle))
        bytes = reader.read(kLargestTextFile + 1);
    if (facts.st_size > kLargestTextFile || bytes.size() > kLargestTextFile) {
        errno = EFBIG;
        failWithErrno(reason);
        return std::nullopt;
    }
    if (reader.error() != QFileDevice::NoError) {
        if (reason)
            *reason = reader.errorString();
        return std::nullopt;
    }
    return decodeText(bytes);
}

void logUnreadText(const QString &reason)
{
    // One reading tries every encoding that there is to try.
    qCWarning(unreadTextLog).noquote() << QStringLiteral("error ") + reason;
    qCWarning(unreadTextLog) << "Trying to open as unicode...";
    qCWarning(unreadTextLog).noquote() << QStringLiteral("error ") + reason;
    qCWarning(unreadTextLog) << "Last hope: opening using NSASCIIStringEncoding...";
}

bool writeTextFileAtomically(const QString &path, const QString &text, QString *reason, LinkAtName link)
{
    return writeFileAtomically(path, text.toUtf8(), reason, link);
}

bool writeFileAtomically(const QString &path, const QByteArray &contents, QString *reason, LinkAtName link)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray target = link == LinkAtName::Followed ? resolved(name) : name;
    struct stat old = {};
    const bool isThere = ::lstat(target.constData(), &old) == 0;
    if (isThere && S_ISDIR(old.st_mode)) {
        errno = EISDIR;
        return failWithErrno(reason);
    }
    if (isThere && !S_ISREG(old.st_mode) && link == LinkAtName::Followed)
        return writeInPlace(target, contents, reason);

    if (!isThere) {
        if (writeUnnamed(target, contents)) {
            flushFolderOf(target);
            return true;
        }
        if (errno != EOPNOTSUPP && errno != EEXIST)
            return failWithErrno(reason);
    }
    // What is no file makes way as it is, and gives its permissions to nobody.
    const bool exists = isThere && S_ISREG(old.st_mode);
    // The kernel applies the umask to a new file; one that takes the place of
    // another is readable by the owner only until it has the other's permissions.
    QByteArray neighbour;
    FileDescriptor file;
    do {
        neighbour = neighbourName(target);
        file = FileDescriptor(::open(neighbour.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                     exists ? 0600 : 0666));
    } while (!file.isOpen() && errno == EEXIST);
    if (!file.isOpen())
        return failWithErrno(reason);
    if (!writeNeighbour(file, contents, exists ? &old : nullptr)
        || ::rename(neighbour.constData(), target.constData()) != 0) {
        failWithErrno(reason);
        ::unlink(neighbour.constData());
        return false;
    }
    flushFolderOf(target);
    return true;
}

} // namespace nurv
