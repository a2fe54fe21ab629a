// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalFolder.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr QByteArrayView kSuffix = ".journal";
constexpr QByteArrayView kUnfinishedSuffix = ".new";
constexpr qsizetype kDigits = 32;

/// Makes the folders of an absolute path that are not there.
bool makeFolders(const QByteArray &path)
{
    constexpr mode_t kPrivate = 0700; // also those above it: the base directory specification wants that
    for (qsizetype slash = path.indexOf('/', 1); slash > 0; slash = path.indexOf('/', slash + 1))
        ::mkdir(path.left(slash).constData(), kPrivate);
    return ::mkdir(path.constData(), kPrivate) == 0 || errno == EEXIST;
}

} // namespace

QString journalFolderPath()
{
    const QString named = qEnvironmentVariable("NURV_STATE");
    if (!named.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(named));
    // The base directory specification lets a relative path count for none.
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!state.startsWith(u'/'))
        state = QDir::homePath() + u"/.local/state"_s;
    return QDir::cleanPath(state + u"/nurv"_s);
}

FileDescriptor openJournalFolder(bool mayMake)
{
    const QByteArray path = QFile::encodeName(journalFolderPath());
    if (mayMake && !makeFolders(path))
        return {};
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

QByteArray newJournalName()
{
    return QUuid::createUuid().toByteArray(QUuid::Id128) + kSuffix.toByteArray();
}

bool isJournalName(const QByteArray &name)
{
    return name.size() == kDigits + kSuffix.size() && name.endsWith(kSuffix)
           && std::all_of(name.begin(), name.begin() + kDigits, [](char character) {
                  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
              });
}

QByteArray unfinishedJournalName(const QByteArray &name)
{
    return name + kUnfinishedSuffix.toByteArray();
}

bool isUnfinishedJournalName(const QByteArray &name)
{
    return name.endsWith(kUnfinishedSuffix) && isJournalName(name.chopped(kUnfinishedSuffix.size()));
}

} // namespace nurv
