// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StageFile.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "convert/ConvertLog.h"
#include "convert/DeletionCheck.h"
#include "platform/NurvFailure.h"
#include "platform/SystemError.h"

#include <QFile>
#include <QFileInfo>

#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The permissions that this process denies its new files. `umask` cannot be read without
/// setting it for all threads (proc(5), since Linux 4.7).
mode_t maskOfNewFiles()
{
    constexpr mode_t kAllButTheOwner = 077;
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return kAllButTheOwner;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (!line.startsWith("Umask:"))
            continue;
        bool isNumber = false;
        const mode_t mask = line.sliced(6).trimmed().toUInt(&isNumber, 8);
        return isNumber ? mask : kAllButTheOwner;
    }
    return kAllButTheOwner;
}

} // namespace

StageFile::StageFile(const QString &folder, const QString &extension)
{
    try {
        m_path = Util::generateTempFileName(folder, extension);
    } catch (const NurvFailure &failure) {
        throw NurvFailure(u"%1: %2\n"_s.arg(folder, failure.reason()));
    }
}

StageFile::~StageFile()
{
    if (!m_path.isEmpty() && QFile::exists(m_path) && !QFile::remove(m_path))
        qCWarning(convertLog).noquote() << "Temporary and not removed:" << m_path;
}

void StageFile::grantUsualAccess() const
{
    constexpr mode_t kReadAndWriteByAll = 0666;
    if (::chmod(QFile::encodeName(m_path).constData(), kReadAndWriteByAll & ~maskOfNewFiles()) != 0)
        qCWarning(convertLog).noquote() << "Readable by its owner only:" << m_path << systemErrorText(errno);
}

void StageFile::replace(const QString &path)
{
    // Of a link the file that it leads to is replaced.
    const QString resolved = QFileInfo(path).canonicalFilePath();
    const QString place = resolved.isEmpty() ? path : resolved;
    const QByteArray from = QFile::encodeName(m_path);
    const QByteArray to = QFile::encodeName(place);
    struct stat former = {};
    if (::stat(to.constData(), &former) != 0)
        grantUsualAccess();
    else if (::chmod(from.constData(), former.st_mode & 07777) != 0)
        qCWarning(convertLog).noquote() << "Permissions not kept:" << path << systemErrorText(errno);
    if (!flushFileToDisk(m_path) || ::rename(from.constData(), to.constData()) != 0)
        throw NurvFailure(u"%1 could not be replaced: %2\n"_s.arg(path, systemErrorText(errno)));
    if (!flushFolderToDisk(folderOf(place)))
        qCWarning(convertLog).noquote() << "Maybe not on the disk yet:" << path << systemErrorText(errno);
}

void StageFile::place(const QString &path)
{
    const QByteArray from = QFile::encodeName(m_path);
    const QByteArray to = QFile::encodeName(path);
    grantUsualAccess();
    if (::link(from.constData(), to.constData()) == 0)
        return;
    // A disk without second names cannot promise more.
    struct stat present = {};
    const int error = errno;
    const bool isFree = error != EEXIST && ::lstat(to.constData(), &present) != 0;
    if (!isFree || ::rename(from.constData(), to.constData()) != 0)
        throw NurvFailure(u"%1 could not be made: %2\n"_s.arg(path, systemErrorText(isFree ? errno : EEXIST)));
}

} // namespace nurv
