// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateAllListsTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "base/ParallelLoop.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/Fingerprint.h"
#include "checksum/ListEntries.h"
#include "engine/ProgramRunSync.h"
#include "engine/RowOfFiles.h"
#include "files/TextFile.h"
#include "process/ResourceFolder.h"
#include "programs/Metaflac.h"
#include "programs/Shntool.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <future>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// In all of the lists that hold the file.
bool isReadBack(const QString &path, const QString &md5Name)
{
    using checksumList::ListKind;
    const QString name = lastPathComponent(path);
    return checksumList::isReadBack(ListKind::Md5, md5Name)
           && (!checksumList::takesSt5(path) || checksumList::isReadBack(ListKind::St5, name))
           && (!checksumList::takesFfp(path) || checksumList::isReadBack(ListKind::Ffp, name));
}

} // namespace

CreateAllListsTask::CreateAllListsTask(NURVTaskQueue *queue, const QStringList &files, Lists lists)
    : NURVInProcessTask(queue), m_files(files), m_lists(std::move(lists)), m_findings(static_cast<std::size_t>(files.size()))
{
    nameRow(u"Create all checksum files"_s);
}

NeededPrograms CreateAllListsTask::neededPrograms() const
{
    NeededPrograms programs;
    for (const QString &path : m_files) {
        if (checksumList::takesSt5(path))
            programs.add(NeededPrograms::ofRun(shntool::program().name, shntool::hashArguments(path)));
        if (checksumList::takesFfp(path))
            programs.add({{metaflac::program().name}, {}});
    }
    return programs;
}

void CreateAllListsTask::doStartTask()
{
    showStarted();
    showStatus(u"Creating checksum files"_s);
    readFiles();
    if (!cancelled())
        writeLists();
}

void CreateAllListsTask::readFiles()
{
    const qsizetype count = m_files.size();
    RowOfFiles row(*this, count, [this, count](qsizetype done) {
        setProgressIndicatorValue(static_cast<double>(done) * 100.0 / static_cast<double>(count));
        updateStatus();
    });
    runInParallel(count, MD5Helper::kReaders, [this] { return cancelled(); }, [&](qsizetype index) {
        m_findings[static_cast<std::size_t>(index)] = read(m_files.at(index));
        row.markDone(index);
    });
}

CreateAllListsTask::Finding CreateAllListsTask::read(const QString &path) const
{
    Finding finding;
    const auto isStopped = [this] { return cancelled(); };
    // Both want the same bytes at about the same time, which then come from the disk once.
    std::future<FileDigest> digest = std::async(std::launch::async, [&path, &isStopped] {
        return MD5Helper::digestOf(path, MD5Helper::Kind::Regular, isStopped);
    });
    if (checksumList::takesSt5(path))
        hash(path, finding);
    if (checksumList::takesFfp(path))
        finding.fingerprint = nurv::fingerprint(path);
    finding.digest = digest.get();
    return finding;
}

void CreateAllListsTask::hash(const QString &path, Finding &finding) const
{
    ProgramRunSync run(programPath(shntool::program().name), shntool::hashListArguments({lastPathComponent(path)}));
    const QString folder = folderOf(path);
    if (!QFileInfo(folder).isDir()) {
        finding.st5Problem = u"its folder is gone"_s;
        return;
    }
    run.setDirectory(folder);
    QString written;
    const ProgramRunSync::Ending ending = run.run(
        [&written](const QString &chunk) {
            written += chunk;
            return true;
        },
        [this] { return cancelled(); });
    if (!ending.exit)
        throw NurvFailure(ending.startFailure);
    QString complaint;
    for (const QString &ended : checksumList::linesOf(written)) {
        const QString line = trimBackspaces(ended);
        if (const qsizetype marker = line.indexOf(checksumList::kSt5Marker); marker >= 0) {
            const qsizetype name = marker + checksumList::kSt5Marker.size();
            finding.st5Line = line.first(name) + shntool::hashedName(line.sliced(name)) + u'\n';
        } else if (line.contains(u": "_s) && !line.startsWith(u"Hashing ["_s)) {
            complaint = line;
        }
    }
    if (!ending.succeeded() || finding.st5Line.isEmpty())
        finding.st5Problem = complaint.isEmpty() ? u"shntool could not read it to its end"_s : complaint;
}

void CreateAllListsTask::writeLists()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QString version = shortVersionString();
    const bool allInOneFolder = checksumList::areAllSameDirectory(m_files);
    QString md5;
    QString st5;
    QString ffp;
    for (qsizetype i = 0; i < m_files.size(); ++i) {
        const Finding &finding = m_findings[static_cast<std::size_t>(i)];
        const QString &path = m_files.at(i);
        const QString name = checksumList::md5EntryName(path, folderOf(m_lists.md5), allInOneFolder);
        if (!checksumList::canName(name)) {
            warn(u"%1 is not in the lists: its name holds a line break"_s.arg(path));
            continue;
        }
        if (!isReadBack(path, name))
            warn(checksumList::misreadText(path));
        md5 += checksumList::md5Entry(finding.digest.hexadecimal, name);
        st5 += finding.st5Line;
        ffp += finding.fingerprint;
        if (!finding.digest.failure.isEmpty())
            warn(u"%1 was not read for the list: %2"_s.arg(path, finding.digest.failure));
        if (!finding.st5Problem.isEmpty())
            warn(u"%1 is not whole: %2"_s.arg(path, finding.st5Problem));
        if (const std::optional<QString> fault = faultOfFingerprint(finding.fingerprint); fault && checksumList::takesFfp(path))
            warn(u"%1 has no fingerprint: %2"_s.arg(path, *fault));
    }
    writeList(m_lists.md5, checksumList::md5Header(version, now), md5);
    for (const auto &[list, entries] : {std::pair(m_lists.st5, st5), std::pair(m_lists.ffp, ffp)}) {
        if (!allInOneFolder && !entries.isEmpty())
            warn(u"%1: %2"_s.arg(lastPathComponent(list), checksumList::bareNamesText()));
    }
    // A line end begins its entries.
    writeList(m_lists.st5, checksumList::st5Header(version, now) + u'\n', st5);
    writeList(m_lists.ffp, checksumList::ffpHeader(version, now), ffp);
}

void CreateAllListsTask::writeList(const QString &path, const QString &header, const QString &entries)
{
    QString reason;
    if (!entries.isEmpty() && !writeTextFileAtomically(path, header + entries, &reason, LinkAtName::Replaced))
        warn(u"Unable to write %1: %2"_s.arg(path, reason));
}

void CreateAllListsTask::stopTask()
{
    dropResultsOfSuccess();
    NURVTask::stopTask();
}

} // namespace nurv
