// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateMD5Task.h"

#include "app/PathNames.h"
#include "base/ParallelLoop.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "engine/RowOfFiles.h"
#include "files/TextFile.h"

using namespace Qt::StringLiterals;

namespace nurv {

CreateMD5Task::CreateMD5Task(NURVTaskQueue *queue, const QStringList &files, const QString &outputPath)
    : NURVInProcessTask(queue), m_fileNames(files), m_outputPath(outputPath)
{
    nameRow(u"Create MD5 checksum file"_s);
}

void CreateMD5Task::doStartTask()
{
    showStarted();
    showStatus(u"Creating MD5 checksum file"_s);
    doCreateMd5();
}

void CreateMD5Task::doCreateMd5()
{
    const std::vector<FileDigest> digests = readFiles();
    if (cancelled())
        return;
    QString list = checksumList::md5Header(shortVersionString(), QDateTime::currentDateTime());
    const bool allInOneFolder = checksumList::areAllSameDirectory(m_fileNames);
    const QString listFolder = folderOf(m_outputPath);
    for (qsizetype i = 0; i < m_fileNames.size(); ++i) {
        const QString &path = m_fileNames.at(i);
        const QString name = checksumList::md5EntryName(path, listFolder, allInOneFolder);
        const FileDigest &digest = digests[static_cast<std::size_t>(i)];
        if (!checksumList::canName(name)) {
            warn(u"%1 is not in the list: its name holds a line break"_s.arg(path));
            continue;
        }
        if (!checksumList::isReadBack(checksumList::ListKind::Md5, name))
            warn(checksumList::misreadText(path));
        if (!digest.failure.isEmpty())
            warn(u"%1 was not read for the list: %2"_s.arg(path, digest.failure));
        list += checksumList::md5Entry(digest.hexadecimal, name);
    }
    showStatus(QString());
    QString reason;
    if (!writeTextFileAtomically(m_outputPath, list, &reason, LinkAtName::Replaced))
        warn(u"Unable to write %1: %2"_s.arg(m_outputPath, reason));
}

std::vector<FileDigest> CreateMD5Task::readFiles()
{
    const qsizetype count = m_fileNames.size();
    std::vector<FileDigest> digests(static_cast<std::size_t>(count));
    RowOfFiles row(*this, count, [this, count](qsizetype done) {
        if (done > 0) {
            setTopTextFieldString(u"Creating MD5 Hash"_s);
            setProgressIndicatorValue(static_cast<double>(done) * 100.0 / static_cast<double>(count));
            updateStatus();
        }
        if (done < count)
            showMainLine(lastPathComponent(m_fileNames.at(done)));
    });
    const auto isStopped = [this] { return cancelled(); };
    runInParallel(count, MD5Helper::kReaders, isStopped, [&](qsizetype index) {
        digests[static_cast<std::size_t>(index)] = MD5Helper::digestOf(m_fileNames.at(index), MD5Helper::Kind::Any, isStopped);
        row.markDone(index);
    });
    return digests;
}

void CreateMD5Task::stopTask()
{
    dropResultsOfSuccess();
    NURVTask::stopTask();
}

} // namespace nurv
