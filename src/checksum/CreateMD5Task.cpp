// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateMD5Task.h"

#include "app/PathNames.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/MD5Helper.h"
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
    QString list = checksumList::md5Header(shortVersionString(), QDateTime::currentDateTime());
    const bool allInOneFolder = checksumList::areAllSameDirectory(m_fileNames);
    const QString listFolder = folderOf(m_outputPath);
    qsizetype done = 0;
    for (const QString &path : m_fileNames) {
        const QString name = checksumList::md5EntryName(path, listFolder, allInOneFolder);
        if (!checksumList::canName(name)) {
            warn(u"%1 is not in the list: its name holds a line break"_s.arg(path));
            ++done;
            continue;
        }
        showMainLine(lastPathComponent(path));
        const FileDigest digest = MD5Helper::digestOf(path, MD5Helper::Kind::Any, [this] { return cancelled(); });
        if (cancelled())
            return;
        if (!digest.failure.isEmpty())
            warn(u"%1 was not read for the list: %2"_s.arg(path, digest.failure));
        ++done;
        setProgressIndicatorValue(static_cast<double>(done) * 100.0 / static_cast<double>(m_fileNames.size()));
        setTopTextFieldString(u"Creating MD5 Hash"_s);
        updateStatus();
        list += checksumList::md5Entry(digest.hexadecimal, name);
    }
    if (cancelled())
        return;
    showStatus(QString());
    QString reason;
    if (!writeTextFileAtomically(m_outputPath, list, &reason, LinkAtName::Replaced))
        warn(u"Unable to write %1: %2"_s.arg(m_outputPath, reason));
}

void CreateMD5Task::stopTask()
{
    dropResultsOfSuccess();
    NURVTask::stopTask();
}

} // namespace nurv
