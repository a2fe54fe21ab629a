// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/StageFile.h"

#include "app/Util.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileStatus.h"
#include "journal/OutputJournal.h"

#include <QFile>

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

StageFile::StageFile(const QString &folder, const QString &extension) : m_since(FolderEntry::now())
{
    try {
        m_path = Util::generateTempFileName(folder, extension);
        OutputJournal::noteTemporary(m_path);
        m_entry.emplace(m_path);
    } catch (const NurvFailure &failure) {
        throw NurvFailure(u"%1: %2\n"_s.arg(folder, failure.reason()));
    }
}

StageFile::~StageFile()
{
    if (m_path.isEmpty())
        return;
    if (!m_entry->remove() && errno != ENOENT)
        qCWarning(originalsLog).noquote() << "Temporary and not removed:" << m_path;
    else
        OutputJournal::forgetTemporary(m_path);
}

void StageFile::grantUsualAccess() const
{
    constexpr mode_t kReadAndWriteByAll = 0666;
    if (!m_entry->changeMode(kReadAndWriteByAll & ~maskOfNewFiles(), m_since))
        qCWarning(originalsLog).noquote() << "Readable by its owner only:" << m_path << systemErrorText(errno);
}

void StageFile::giveUp()
{
    if (!isThere(m_path))
        OutputJournal::forgetTemporary(m_path);
    m_path.clear();
}

void StageFile::place(const QString &path)
{
    grantUsualAccess();
    if (!m_entry->moveTo(QFile::encodeName(path)))
        throw NurvFailure(u"%1 could not be made: %2\n"_s.arg(path, systemErrorText(errno)));
}

} // namespace nurv
