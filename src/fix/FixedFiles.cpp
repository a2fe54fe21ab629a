// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixedFiles.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/OutputJournal.h"
#include "programs/Shntool.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool isPlaced(const std::optional<struct stat> &facts, const QString &path)
{
    const std::optional<struct stat> now = FolderEntry(path).facts();
    return facts && now && S_ISREG(now->st_mode) && isUntouched(*facts, *now);
}

void removeFor(const QString &path)
{
    if (!FolderEntry(path).remove())
        qCWarning(originalsLog).noquote() << "Not removed:" << path << ':' << systemErrorText(errno);
}

} // namespace

FixedFiles::FixedFiles(const QStringList &sources, const QString &outputFolder, const QString &format)
    : m_files(static_cast<std::size_t>(sources.size()))
{
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        File &file = m_files[i];
        file.source = sources.at(static_cast<qsizetype>(i));
        file.path = outputPath(outputFolder, file.source, format.toLower());
        for (const QString &name : shntool::fixedNames(file.source, format))
            file.madeAs.append(joinPath(outputFolder, name));
    }
}

FixedFiles::~FixedFiles() = default;

QStringList FixedFiles::paths() const
{
    QStringList paths;
    for (const File &file : m_files)
        paths.append(file.path);
    return paths;
}

/// The program would refuse some of it, but only when it has worked for a while.
QStringList FixedFiles::obstaclesOf(const File &file)
{
    const auto tell = [&file](const QString &what) { return lastPathComponent(file.source) + u": "_s + what; };
    const QString name = lastPathComponent(file.path);
    if (isLink(file.path))
        return {tell(u"its output name %1 is a link"_s.arg(name))};
    if (isThere(file.path))
        return {tell(u"its output %1 exists already"_s.arg(name))};
    for (const QString &made : file.madeAs) {
        if (isThere(made))
            return {tell(u"%1, as its program calls what it makes, exists already"_s.arg(lastPathComponent(made)))};
    }
    for (const QStringView suffix : {kFlacScratchSuffix, kMetaflacScratchSuffix}) {
        const QString scratch = file.path + suffix.toString();
        if (isThere(scratch))
            return {tell(u"%1 is there already, and has the name of a temporary file of its program"_s.arg(
                lastPathComponent(scratch)))};
    }
    return {};
}

/// Sources of which one would be made under a name that another one needs.
QStringList FixedFiles::clashes() const
{
    QHash<QString, const File *> owners;
    QStringList clashes;
    for (const File &file : m_files) {
        for (const QString &path : QStringList{file.path} + file.madeAs) {
            const File *const other = owners.value(path, nullptr);
            if (other && other != &file) {
                clashes.append(u"%1: %2 is also what becomes of %3"_s.arg(
                    lastPathComponent(file.source), lastPathComponent(path), other->source));
                break;
            }
            owners.insert(path, &file);
        }
    }
    return clashes;
}

QStringList FixedFiles::take()
{
    QStringList obstacles;
    for (const File &file : m_files)
        obstacles += obstaclesOf(file);
    if (obstacles.isEmpty())
        obstacles = clashes();
    if (!obstacles.isEmpty())
        return obstacles;
    for (File &file : m_files) {
        if (const std::optional<QString> refusal = file.claim.take(file.path, file.source, nullptr))
            obstacles.append(lastPathComponent(file.source) + u": "_s + *refusal);
    }
    if (!obstacles.isEmpty())
        release();
    return obstacles;
}

void FixedFiles::release()
{
    for (File &file : m_files)
        file.claim.release();
}

bool FixedFiles::areSourcesReadByOthers() const
{
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const File &file) { return file.claim.isSourceReadByOthers(); });
}

void FixedFiles::begin()
{
    std::vector<OutputJournal::Planned> outputs;
    for (const File &file : m_files) {
        for (const QString &path : QStringList{file.path} + file.madeAs)
            outputs.push_back({path, file.source});
    }
    m_journal = OutputJournal::begin(outputs);
    OutputJournal::prepareForTemporaries();
}

void FixedFiles::markBegun(qsizetype place)
{
    const File &file = m_files[static_cast<std::size_t>(place)];
    // The name that it is to get, too: what tells a file of this job is when it came to be, and that is now.
    for (const QString &path : QStringList{file.path} + file.madeAs)
        m_journal->markBegun(path);
}

void FixedFiles::place()
{
    for (File &file : m_files)
        noteMade(file);
    try {
        for (File &file : m_files)
            placeOne(file);
    } catch (const NurvFailure &) {
        removeAll();
        for (const File &file : m_files) {
            for (const QString &path : file.madeAs) {
                const std::optional<struct stat> now = FolderEntry(path).facts();
                if (!file.facts && file.made && now && isSameFile(*file.made, *now))
                    removeFor(path);
            }
        }
        throw;
    }
}

/// The program made it for a name that was free, and did not fail. Where there are two, somebody else has made one of them.
void FixedFiles::noteMade(File &file)
{
    QList<struct stat> found;
    for (const QString &path : file.madeAs) {
        if (const std::optional<struct stat> facts = FolderEntry(path).facts())
            found.append(*facts);
    }
    if (found.size() == 1)
        file.made = found.first();
}

void FixedFiles::placeOne(File &file)
{
    const auto made = std::find_if(file.madeAs.begin(), file.madeAs.end(), [](const QString &path) { return isThere(path); });
    if (made == file.madeAs.end())
        throw NurvFailure(u"%1: its program made no output"_s.arg(lastPathComponent(file.source)));
    if (!file.made)
        throw NurvFailure(u"%1: another file has a name that its output may have"_s.arg(lastPathComponent(file.source)));
    if (!renameToFreeName(QFile::encodeName(*made), QFile::encodeName(file.path))) {
        throw NurvFailure(u"%1: its output could not get its name: %2"_s.arg(lastPathComponent(file.source),
                                                                            systemErrorText(errno)));
    }
    file.facts = FolderEntry(file.path).facts();
}

void FixedFiles::markWritten(qsizetype place)
{
    File &file = m_files[static_cast<std::size_t>(place)];
    file.facts = FolderEntry(file.path).facts();
}

void FixedFiles::markComplete()
{
    for (const File &file : m_files) {
        for (const QString &path : QStringList{file.path} + file.madeAs)
            m_journal->markEnded(path);
    }
}

void FixedFiles::removeAll()
{
    for (const File &file : m_files) {
        if (!file.facts)
            continue;
        if (isPlaced(file.facts, file.path))
            removeFor(file.path);
        else
            qCWarning(originalsLog).noquote() << "Left as it is, since it is no longer what was made:" << file.path;
    }
    if (m_journal)
        markComplete();
}

void FixedFiles::flushJournal()
{
    if (m_journal)
        m_journal->flush();
}

QStringList FixedFiles::leftByProgram() const
{
    QStringList left;
    for (const File &file : m_files)
        std::copy_if(file.madeAs.begin(), file.madeAs.end(), std::back_inserter(left),
                     [](const QString &path) { return isThere(path); });
    return left;
}

qint64 FixedFiles::bytes() const
{
    qint64 bytes = 0;
    for (const File &file : m_files)
        bytes += QFileInfo(file.path).size();
    return bytes;
}

} // namespace nurv
