// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/Trash.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "files/FolderEntry.h"
#include "files/WriteAll.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// One trash folder, and the folder that its recorded paths are relative to
// (empty: they are absolute).
struct TrashFolder {
    QString path;
    QString relativeTo;
};

std::optional<struct stat> statusOf(const QString &path)
{
    struct stat facts = {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return facts;
}

// Makes the folder, private to the user, unless it is there; one that is a link or
// someone else's is not used.
bool makePrivateFolder(const QString &path)
{
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0 && errno != EEXIST)
        return false;
    const auto facts = statusOf(path);
    if (facts && S_ISDIR(facts->st_mode) && facts->st_uid == ::getuid())
        return true;
    errno = ENOTDIR;
    return false;
}

bool prepare(const TrashFolder &trash)
{
    return makePrivateFolder(trash.path) && makePrivateFolder(trash.path + u"/files"_s)
        && makePrivateFolder(trash.path + u"/info"_s);
}

QString userDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

// The file system that the home trash is on, or would be.
std::optional<dev_t> deviceOfHomeTrash()
{
    QString existing = userDataFolder();
    if (!QDir::isAbsolutePath(existing))
        return std::nullopt;
    while (!QFileInfo::exists(existing) && existing != u"/"_s)
        existing = QFileInfo(existing).path();
    const auto facts = statusOf(QFileInfo(existing).canonicalFilePath());
    return facts ? std::optional(facts->st_dev) : std::nullopt;
}

std::optional<TrashFolder> homeTrash()
{
    const TrashFolder trash{userDataFolder() + u"/Trash"_s, {}};
    if (!QDir().mkpath(userDataFolder()) || !prepare(trash))
        return std::nullopt;
    return trash;
}

QString topOfFileSystem(QString folder, dev_t device)
{
    while (folder != u"/"_s) {
        const QString parent = QFileInfo(folder).path();
        const auto facts = statusOf(parent);
        if (!facts || facts->st_dev != device)
            break;
        folder = parent;
    }
    return folder;
}

std::optional<TrashFolder> topTrash(const QString &folder, dev_t device)
{
    const QString top = topOfFileSystem(folder, device);
    const QString prefix = top == u"/"_s ? top : top + u'/';
    const QString user = QString::number(::getuid());
    const auto shared = statusOf(prefix + u".Trash"_s);
    if (shared && S_ISDIR(shared->st_mode) && (shared->st_mode & S_ISVTX) != 0) {
        const TrashFolder trash{prefix + u".Trash/"_s + user, prefix};
        if (prepare(trash))
            return trash;
    }
    const TrashFolder trash{prefix + u".Trash-"_s + user, prefix};
    return prepare(trash) ? std::optional(trash) : std::nullopt;
}

QByteArray trashInfo(const QString &path, const TrashFolder &trash)
{
    const QString recorded = trash.relativeTo.isEmpty() ? path : path.mid(trash.relativeTo.size());
    return "[Trash Info]\nPath=" + QUrl::toPercentEncoding(recorded, "/")
        + "\nDeletionDate=" + QDateTime::currentDateTime().toString(Qt::ISODate).toLatin1() + '\n';
}

// Leaves room for a number and for ".trashinfo" in the 255 bytes of a name.
QString nameInTrash(const QString &name, int attempt)
{
    constexpr qsizetype kLongest = 230;
    QString shortened = name;
    while (shortened.toUtf8().size() > kLongest)
        shortened.chop(shortened.back().isLowSurrogate() ? 2 : 1);
    return attempt == 1 ? shortened : shortened + u'.' + QString::number(attempt);
}

bool writeInfo(FileDescriptor file, const QByteArray &info)
{
    return writeAll(file.get(), info) && file.close();
}

// The info file reserves the name; only then the file moves. One may lie in the trash
// without its info file: its name is taken, too.
bool moveInto(const TrashFolder &trash, const FolderEntry &item, const QString &folder, const QString &recordedName)
{
    const QByteArray info = trashInfo(QDir(folder).filePath(recordedName), trash);
    const QString &name = recordedName;
    constexpr int kAttempts = 10000;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        const QString entry = nameInTrash(name, attempt);
        const QByteArray infoPath =
            QFile::encodeName(trash.path + u"/info/"_s + entry + u".trashinfo"_s);
        FileDescriptor infoFile(
            ::open(infoPath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!infoFile.isOpen()) {
            if (errno == EEXIST)
                continue;
            return false;
        }
        const QByteArray target = QFile::encodeName(trash.path + u"/files/"_s + entry);
        if (writeInfo(std::move(infoFile), info) && item.moveTo(target))
            return true;
        const int error = errno;
        ::unlink(infoPath.constData());
        errno = error;
        if (error != EEXIST)
            return false;
    }
    return false;
}

} // namespace

bool moveToTrash(const QString &path, const QString &originalPath)
{
    return moveToTrash(path, originalPath, FolderEntry(path));
}

bool moveToTrash(const QString &path, const QString &originalPath, const FolderEntry &entry)
{
    const QFileInfo item(path);
    const QString recordedName = originalPath.isEmpty() ? item.fileName() : QFileInfo(originalPath).fileName();
    // The folder is resolved and the item is not: a link goes into the trash itself.
    const QString folder = QFileInfo(item.absolutePath()).canonicalFilePath();
    const QString name = item.fileName();
    const auto facts = statusOf(folder);
    bool moved = false;
    errno = ENOENT;
    if (facts && !folder.isEmpty() && !name.isEmpty() && name != u"."_s && name != u".."_s) {
        if (entry.facts()) {
            const auto trash = deviceOfHomeTrash() == facts->st_dev
                ? homeTrash()
                : topTrash(folder, facts->st_dev);
            moved = trash && moveInto(*trash, entry, folder, recordedName);
        }
    }
    if (!moved)
        qCWarning(filesLog).noquote()
            << path << "was not moved to the trash:" << systemErrorText(errno);
    return moved;
}

} // namespace nurv
