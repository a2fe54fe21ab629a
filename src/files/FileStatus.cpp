// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/FileStatus.h"

#include <QFile>
#include <QFileInfo>

namespace nurv {

namespace {

bool isSameMoment(const timespec &left, const timespec &right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

} // namespace

std::optional<struct stat> statusOf(const QString &path)
{
    struct stat facts = {};
    if (::stat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return facts;
}

std::optional<struct stat> statusOfName(const QString &path)
{
    struct stat facts = {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return facts;
}

bool isSameFile(const struct stat &left, const struct stat &right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool isSameEntry(const QString &left, const QString &right)
{
    const std::optional<struct stat> facts = statusOf(left);
    const std::optional<struct stat> others = statusOf(right);
    return facts && others && isSameFile(*facts, *others)
           && QFileInfo(left).canonicalFilePath() == QFileInfo(right).canonicalFilePath();
}

bool isUntouched(const struct stat &before, const struct stat &now)
{
    return isSameFile(before, now) && before.st_size == now.st_size && isSameMoment(before.st_mtim, now.st_mtim)
           && isSameMoment(before.st_ctim, now.st_ctim);
}

bool isThere(const QString &path)
{
    return statusOfName(path).has_value();
}

bool isPlainFile(const QString &path)
{
    const std::optional<struct stat> facts = statusOfName(path);
    return facts && S_ISREG(facts->st_mode);
}

bool isLink(const QString &path)
{
    const std::optional<struct stat> facts = statusOfName(path);
    return facts && S_ISLNK(facts->st_mode);
}

} // namespace nurv
