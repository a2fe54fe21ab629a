// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileIntake.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileNames.h"
#include "files/FileStatus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kNamesShown = 20;

class FolderWalk {
public:
    /// `base`: of the files that are found in folders.
    FolderWalk(const SearchRules &rules, const QString &base, FileIntake &intake)
        : m_rules(rules), m_base(base), m_intake(intake)
    {
    }

    void visitGiven(GivenPath given)
    {
        if (mustStop())
            return;
        struct stat facts = {};
        const int error = look(given.path, facts);
        given.isFolder = error == 0 && S_ISDIR(facts.st_mode);
        if (m_rules.givenFilesMustBeReadable && !given.isFolder)
            given.obstacle = obstacleTo(given.path, error, facts);
        m_intake.given.append(given);
        if (given.isFolder)
            visitEntries(given.path);
        else if (given.obstacle.isEmpty())
            takeFile(given.path, true);
    }

private:
    [[nodiscard]] bool mustStop() const { return m_rules.mustStop && m_rules.mustStop(); }

    /// 0, or the system's error number.
    static int look(const QString &path, struct stat &facts)
    {
        return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? 0 : errno;
    }

    static QString obstacleTo(const QString &path, int error, const struct stat &facts)
    {
        if (error != 0)
            return systemErrorText(error);
        if (!S_ISREG(facts.st_mode))
            return u"it is no regular file"_s;
        return ::access(QFile::encodeName(path).constData(), R_OK) == 0 ? QString() : systemErrorText(errno);
    }

    static bool canLookInto(const QString &folder)
    {
        struct stat facts = {};
        return look(joinPath(folder, u"."_s), facts) == 0;
    }

    // Returns false when the folder that holds the path does not let one look at
    // its entries.
    bool visit(const QString &folder, const QString &path)
    {
        if (mustStop())
            return true;
        struct stat facts = {};
        const int error = look(path, facts);
        if (error == EACCES && !canLookInto(folder))
            return false;
        if (error == ENOENT || (error == 0 && S_ISREG(facts.st_mode)))
            takeFile(path, false);
        else if (error != 0)
            m_intake.unreachableFiles.append(path);
        else if (S_ISDIR(facts.st_mode))
            enter(path);
        return true;
    }

    /// Not through a link that lies in a folder: what it leads to was not given.
    void enter(const QString &path)
    {
        if (isLink(path))
            m_intake.linkedFolders.append(path);
        else
            visitEntries(path);
    }

    void visitEntries(const QString &folder)
    {
        const FolderListing listing = listFolder(folder);
        for (const QString &name : listing.refused)
            m_intake.unreadableNames.append(joinPath(folder, name));
        bool isReadable = listing.error.isEmpty();
        for (const QString &name : listing.names) {
            const QString path = joinPath(folder, name);
            // What a job is making, or was making when it was killed; or somebody hides a file so.
            if (temporaryKind(name) != TemporaryKind::None) {
                if (m_rules.look(path, false) == FileVerdict::Taken)
                    m_intake.temporaryFiles.append(path);
                continue;
            }
            if (!visit(folder, path)) {
                isReadable = false;
                break;
            }
        }
        if (!isReadable)
            m_intake.unreadableFolders.append(folder);
    }

    void takeFile(const QString &path, bool isGiven)
    {
        const FileVerdict verdict = m_rules.look(path, isGiven);
        const bool isSkipped = isSkippedName(path) && (m_rules.skipsGivenNames || !isGiven);
        if (verdict == FileVerdict::Taken && !isSkipped)
            m_intake.accept(path, isGiven ? QString() : m_base);
        else if (verdict != FileVerdict::Taken && verdict != FileVerdict::PassedOver)
            m_intake.refused.append({.path = path, .verdict = verdict, .isGiven = isGiven});
    }

    const SearchRules &m_rules;
    QString m_base;
    FileIntake &m_intake;
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

QSet<QString> FileIntake::badExtensions() const
{
    QSet<QString> extensions;
    for (const RefusedFile &file : refused)
        extensions.insert(pathExtension(file.path));
    return extensions;
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

void collectFiles(const QString &given, const SearchRules &rules, FileIntake &intake)
{
    const QString path = absolutePath(given);
    FolderWalk(rules, baseOf(given, path), intake).visitGiven({.name = given, .path = path});
}

std::optional<Alert> skippedAlert(const FileIntake &intake, bool tellsSkipped, const QStringList &unknownKinds)
{
    Alert alert{.title = u"Some files could not be read and were skipped"_s, .message = {}, .buttons = {u"OK"_s}};
    appendNames(alert.message, u"File names that are not valid UTF-8:"_s, intake.unreadableNames);
    appendNames(alert.message, u"Folders that cannot be read:"_s, intake.unreadableFolders);
    appendNames(alert.message, u"Files that cannot be reached:"_s, intake.unreachableFiles);
    if (!tellsSkipped)
        return alert.message.isEmpty() ? std::nullopt : std::optional(alert);
    const bool couldAllBeRead = alert.message.isEmpty();
    appendNames(alert.message, u"Links to folders, which are not followed:"_s, intake.linkedFolders);
    appendNames(alert.message, u"Files with the names of temporary ones:"_s, intake.temporaryFiles);
    if (couldAllBeRead)
        alert.title = u"Some files were skipped"_s;
    if (!unknownKinds.isEmpty()) {
        const QString kinds = unknownKinds.first(std::min(unknownKinds.size(), kNamesShown)).join(u", "_s);
        if (alert.message.isEmpty())
            return Alert{.title = u"Some files are of kinds that no tab takes and were skipped"_s,
                         .message = kinds,
                         .buttons = {u"OK"_s}};
        alert.message += u"\n\nKinds that no tab takes:\n"_s + kinds;
    }
    return alert.message.isEmpty() ? std::nullopt : std::optional(alert);
}

} // namespace nurv
