// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateFFPTask.h"

#include "app/PathNames.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/Fingerprint.h"
#include "files/TextFile.h"
#include "programs/ExternalPrograms.h"
#include "programs/Metaflac.h"
#include "settings/SettingsStore.h"

using namespace Qt::StringLiterals;

namespace nurv {

CreateFFPTask::CreateFFPTask(NURVTaskQueue *queue, const QMap<QString, QStringList> &files, const QString &ffpName)
    : NURVInProcessTask(queue), m_dictByOutputDir(files), m_ffpName(ffpName)
{
    nameRow(u"Create FFP checksum file"_s);
}

NeededPrograms CreateFFPTask::neededPrograms() const
{
    return {{metaflac::program().name}, {}};
}

void CreateFFPTask::doStartTask()
{
    showStarted();
    showStatus(u"Creating FFP checksum file"_s);
    // A list made without it would hold nothing but its absence.
    requireProgram(metaflac::program().name);
    for (auto folder = m_dictByOutputDir.cbegin(); folder != m_dictByOutputDir.cend() && !cancelled(); ++folder)
        doCreateFFP(folder.value(), folder.key());
}

void CreateFFPTask::doCreateFFP(const QStringList &files, const QString &outputDir)
{
    QString list = checksumList::ffpHeader(shortVersionString(), QDateTime::currentDateTime());
    for (const QString &path : files) {
        if (cancelled())
            return;
        if (!checksumList::canName(lastPathComponent(path))) {
            warn(u"%1 is not in the list: its name holds a line break"_s.arg(path));
            continue;
        }
        if (!checksumList::isReadBack(checksumList::ListKind::Ffp, lastPathComponent(path)))
            warn(checksumList::misreadText(path));
        const QString entry = fingerprint(path);
        list += entry;
        if (const std::optional<QString> fault = faultOfFingerprint(entry))
            warn(u"%1 has no fingerprint: %2"_s.arg(path, *fault));
    }
    if (cancelled())
        return;
    const QString path = listPath(outputDir);
    QString reason;
    if (!writeTextFileAtomically(path, list, &reason, LinkAtName::Replaced))
        warn(u"Unable to write %1: %2"_s.arg(path, reason));
}

QString CreateFFPTask::listPath(const QString &outputDir) const
{
    const SettingsStore &settings = SettingsStore::instance();
    if (!settings.boolean(u"checksumFileUsesOutputDirName"_s))
        return joinPath(outputDir, m_ffpName);
    return joinPath(outputDir, checksumList::ffpFileName(outputDir, settings.string(u"ffpExtension"_s), true));
}

void CreateFFPTask::stopTask()
{
    dropResultsOfSuccess();
    NURVTask::stopTask();
}

} // namespace nurv
