// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileIntake.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/Log.h"
#include "files/FileNames.h"
#include "files/FileStatus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kNamesShown = 20;

class FolderWalk {
public:
    /// `base`: of the files that are found in folders.
    FolderWalk(const FileTest &isValid, const QString &base, FileIntake &intake, const StopTest &mustStop)
        : m_isValid(isValid), m_base(base), m_intake(intake), m_mustStop(mustStop)
    {
    }

    // Returns false when the folder that holds the path does not let one look at
    // its entries.
    bool visit(const QString &path)
    {
        if (m_mustStop && m_mustStop())
            return true;
        const QByteArray name = QFile::encodeName(path);
        struct stat facts = {};
        if (::stat(name.constData(), &facts) != 0) {
            if (errno == ENOENT || m_depth == 0)
                takeFile(path);
            else if (errno == EACCES && !canLookInto(folderOf(path)))
                return false;
            else
                m_intake.unreachableFiles.append(path);
        } else if (!S_ISDIR(facts.st_mode)) {
            if (S_ISREG(facts.st_mode) || m_depth == 0)
                takeFile(path);
        } else if (mayEnter(path)) {
            ++m_depth;
            visitEntries(path);
            --m_depth;
        }
        return true;
    }

private:
    static bool canLookInto(const QString &folder)
    {
        struct stat facts = {};
        return ::stat(QFile::encodeName(joinPath(folder, u"."_s)).constData(), &facts) == 0;
    }

    /// Not through a link that lies in a folder: what it leads to was not given.
    bool mayEnter(const QString &path)
    {
        if (m_depth == 0 || !isLink(path))
            return true;
        m_intake.linkedFolders.append(path);
        return false;
    }

    void visitEntries(const QString &folder)
    {
        const FolderListing listing = listFolder(folder);
        for (const QString &name : listing.refused)
            m_intake.unreadableNames.append(joinPath(folder, name));
        bool isReadable = listing.error.isEmpty();
        for (const QString &name : listing.names) {
            // What a job is making, or was making when it was killed; or somebody hides a file so.
            if (temporaryKind(name) != TemporaryKind::None) {
                if (m_isValid(joinPath(folder, name)))
                    m_intake.temporaryFiles.append(joinPath(folder, name));
                continue;
            }
            if (!visit(joinPath(folder, name))) {
                isReadable = false;
                break;
            }
        }
        if (!isReadable)
            m_intake.unreadableFolders.append(folder);
    }

    void takeFile(const QString &path)
    {
        if (!m_isValid(path))
            m_intake.badExtensions.insert(pathExtension(path));
        else if (!isSkippedName(path))
            m_intake.accept(path, m_depth == 0 ? QString() : m_base);
    }

    const FileTest &m_isValid;
    QString m_base;
    FileIntake &m_intake;
    const StopTest &m_mustStop;
    int m_depth = 0; ///< of the folders that are being listed
};

/// The folder from which the relative folders of what lies in a given folder count.
QString baseOf(const QString &given, const QString &path)
{
    const QString name = lastPathComponent(given);
    return name.isEmpty() || name == u"." || name == u".." ? path : folderOf(path);
}

void appendNames(QString &message, const QString &heading, const QStringList &names)
{
    if (names.isEmpty())
        return;
    if (!message.isEmpty())
        message += u"\n\n"_s;
    message += heading + u'\n' + names.first(std::min(names.size(), kNamesShown)).join(u'\n');
    if (names.size() <= kNamesShown)
        return;
    message += u"\nand %1 more"_s.arg(names.size() - kNamesShown);
    for (const QString &name : names.sliced(kNamesShown))
        qCWarning(appLog).noquote() << heading << name;
}

} // namespace

void FileIntake::accept(const QString &path, const QString &base)
{
    // Whoever appended to the accepted files alone gave files themselves.
    bases.resize(accepted.size());
    accepted.append(path);
    bases.append(base);
}

bool isSkippedName(const QString &path)
{
    const QString name = lastPathComponent(path);
    return name == u".DS_Store" || name == u".TOC.plist";
}

bool isFolder(const QString &path)
{
    struct stat facts = {};
    return ::stat(QFile::encodeName(path).constData(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

QString absolutePath(const QString &name)
{
    // Joined by hand: the library takes a leading colon for a path of its own.
    const QString path = joinPath(name.startsWith(u'/') ? QString() : QDir::currentPath(), name);
    const qsizetype up = path.endsWith(u"/.."_s) ? path.size() - 3 : path.lastIndexOf(u"/../"_s);
    if (up < 0)
        return QDir::cleanPath(path);
    const QString folder = QFileInfo(path.left(up + 3)).canonicalFilePath();
    return folder.isEmpty() ? path : QDir::cleanPath(joinPath(folder, path.mid(up + 3)));
}

QString relativeFolder(const QString &path, const QString &base)
{
    const QString folder = folderOf(path);
    const QString front = base.endsWith(u'/') ? base : base + u'/';
    return !base.isEmpty() && folder.startsWith(front) ? folder.mid(front.size()) : QString();
}

void collectFiles(const QString &given, const FileTest &isValid, FileIntake &intake, const StopTest &mustStop)
{
    const QString path = absolutePath(given);
    FolderWalk(isValid, baseOf(given, path), intake, mustStop).visit(path);
}

std::optional<Alert> unreadableAlert(const FileIntake &intake)
{
    Alert alert{.title = u"Some files could not be read and were skipped"_s, .message = {}, .buttons = {u"OK"_s}};
    appendNames(alert.message, u"File names that are not valid UTF-8:"_s, intake.unreadableNames);
    appendNames(alert.message, u"Folders that cannot be read:"_s, intake.unreadableFolders);
    appendNames(alert.message, u"Files that cannot be reached:"_s, intake.unreachableFiles);
    if (alert.message.isEmpty())
        alert.title = u"Some files were skipped"_s;
    appendNames(alert.message, u"Links to folders, which are not followed:"_s, intake.linkedFolders);
    appendNames(alert.message, u"Files with the names of temporary ones:"_s, intake.temporaryFiles);
    return alert.message.isEmpty() ? std::nullopt : std::optional(alert);
}

} // namespace nurv
