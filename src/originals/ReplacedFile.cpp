// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/ReplacedFile.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileFlush.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/OutputJournal.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <optional>
#include <utility>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A name beside the file that nothing has; folder searches pass over it.
QString nameAside(const QString &path)
{
    QString name;
    do {
        name = joinPath(folderOf(path),
                        u".nurv-%1.kept"_s.arg(QRandomGenerator::system()->generate64() & 0xFFFFFFFFFFFF, 12, 16,
                                               QLatin1Char('0')));
    } while (isThere(name));
    return name;
}

} // namespace

ReplacedFile::ReplacedFile(const QString &path, std::shared_ptr<OutputJournal> journal)
    : m_path(path), m_aside(nameAside(path)), m_journal(std::move(journal))
{
    struct stat facts = {};
    if (::lstat(QFile::encodeName(m_path).constData(), &facts) != 0 || S_ISDIR(facts.st_mode)) {
        m_aside.clear();
        throw NurvFailure(u"%1 is no file that could be replaced"_s.arg(lastPathComponent(m_path)));
    }
    if (m_journal)
        m_journal->noteAside(m_path, m_aside);
    if (renameToFreeName(QFile::encodeName(m_path), QFile::encodeName(m_aside)))
        return;
    const QString reason = systemErrorText(errno);
    forget();
    throw NurvFailure(u"%1 cannot be moved aside: %2"_s.arg(lastPathComponent(m_path), reason));
}

ReplacedFile::~ReplacedFile()
{
    try {
        putBack();
    } catch (const NurvFailure &failure) {
        qCWarning(originalsLog).noquote() << m_path << failure.reason();
    }
}

void ReplacedFile::passOnPermissions(const timespec &since) const
{
    const std::optional<struct stat> former = statusOf(m_aside);
    if (former && !FolderEntry(m_path).changeMode(former->st_mode & 0777, since))
        qCWarning(originalsLog).noquote() << "Permissions not kept:" << m_path << systemErrorText(errno);
}

void ReplacedFile::flushNewFile()
{
    m_isNewFileFlushed = m_isNewFileFlushed || flushToDisk(m_path);
}

void ReplacedFile::retire()
{
    if (m_aside.isEmpty())
        return;
    flushNewFile();
    if (!m_isNewFileFlushed)
        stayAside(u"the file that was replaced is %1 now, since the new one may not be on the disk yet"_s);
    if (Util::removeFile(m_aside, m_path) == Util::Removal::Stayed)
        stayAside(u"the file that was replaced could not be removed and is %1 now"_s);
    forget();
}

/// For good, with that reason, which has a place for its name.
void ReplacedFile::stayAside(const QString &reason)
{
    throw NurvFailure(reason.arg(lastPathComponent(std::exchange(m_aside, QString()))));
}

void ReplacedFile::putBack()
{
    if (m_aside.isEmpty())
        return;
    if (!renameToFreeName(QFile::encodeName(m_aside), QFile::encodeName(m_path))) {
        const QString reason = systemErrorText(errno);
        const QString aside = std::exchange(m_aside, QString());
        throw NurvFailure(u"the file that was there before is %1 now, since it could not get its name back: %2"_s.arg(
            lastPathComponent(aside), reason));
    }
    forget();
}

void ReplacedFile::forget()
{
    m_aside.clear();
    if (m_journal)
        m_journal->forgetAside(m_path);
}

} // namespace nurv
