// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Util.h"

#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "desktop/SessionIdentifier.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "files/Trash.h"
#include "settings/SettingsStore.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kPlaceholders = 8;
/// mkostemps fills only the last six of them.
constexpr qsizetype kSystemPlaceholders = 6;
/// Longer paths would be cut, and the file would get another name or folder.
constexpr qsizetype kLongestPath = 1023;

QString nameTemplate(const std::optional<QString> &givenFolder, const std::optional<QString> &extension)
{
    const QString folder = givenFolder ? *givenFolder : QDir::tempPath();
    if (folder.isEmpty())
        throw NurvFailure(u"Invalid parameter not satisfying: nil != directory"_s);
    if (!extension)
        throw NurvFailure(u"Invalid parameter not satisfying: nil != extension"_s);
    const QString session = u"%1"_s.arg(sessionIdentifier(), 8, 16, QLatin1Char('0'));
    return folder + u"/Nurv-"_s + session + u'-' + QString(kPlaceholders, u'X') + u'.' + *extension;
}

[[noreturn]] void failToCreate(int error)
{
    throw NurvFailure(u"Unable to create a temporary file: "_s + systemErrorText(error));
}

void fillFirstPlaceholders(QByteArray &path, qsizetype suffixLength)
{
    static constexpr QByteArrayView kCharacters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    const qsizetype first = path.size() - suffixLength - kPlaceholders;
    for (qsizetype at = first; at < first + kPlaceholders - kSystemPlaceholders; ++at) {
        const auto choice = QRandomGenerator::global()->bounded(static_cast<int>(kCharacters.size()));
        path[at] = kCharacters.at(choice);
    }
}

} // namespace

QString Util::generateTempFileName(const std::optional<QString> &folder, const std::optional<QString> &extension)
{
    QByteArray path = QFile::encodeName(nameTemplate(folder, extension));
    if (path.size() > kLongestPath)
        failToCreate(ENAMETOOLONG);
    const qsizetype suffixLength = QFile::encodeName(*extension).size() + 1;
    fillFirstPlaceholders(path, suffixLength);

    const int file = ::mkostemps(path.data(), static_cast<int>(suffixLength), O_CLOEXEC);
    if (file < 0)
        failToCreate(errno);
    if (::close(file) != 0) {
        const int error = errno;
        ::unlink(path.constData());
        throw NurvFailure(u"Unable to close the temporary file: "_s + systemErrorText(error));
    }
    return QString::fromUtf8(path);
}

QString Util::generateTempFileName2(const std::optional<QString> &folder, const std::optional<QString> &extension)
{
    return nameTemplate(folder, extension);
}

Util::Removal Util::removeFile(const QString &path, const QString &originalPath, const std::optional<struct stat> &seen)
{
    // One folder from the last look on, whatever is put in its place.
    const FolderEntry entry(path);
    if (const auto now = entry.statusOfTarget(); seen && !(now && isUntouched(*seen, *now))) {
        qCWarning(appLog).noquote() << path << "was not removed: it is not what it was";
        return Removal::Stayed;
    }
    // In doubt about the user's choice the file stays recoverable.
    const std::optional<int> choice = SettingsStore::instance().reliableInteger(u"trashOrDelete"_s);
    // The log line of the trash tells why a file has stayed.
    if (!choice || *choice != 0)
        return moveToTrash(path, originalPath, entry) ? Removal::Trashed : Removal::Stayed;
    if (entry.remove() || errno == ENOENT)
        return Removal::Deleted;
    qCWarning(appLog).noquote() << path << "was not deleted:" << systemErrorText(errno);
    return Removal::Stayed;
}

} // namespace nurv
