// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"

#include "base/Log.h"
#include "engine/NURVTaskResults.h"
#include "files/TextFile.h"

using namespace Qt::StringLiterals;

namespace nurv {

NURVAsyncNSTaskFileOutputRedirection::NURVAsyncNSTaskFileOutputRedirection(
    const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
    const QStringList &arguments)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_fileName(fileName)
{
}

void NURVAsyncNSTaskFileOutputRedirection::startTask()
{
    showMainLine(title());
    if (m_subTitle)
        showStatus(*m_subTitle);
    NURVAsyncNSTask::startTask();
}

void NURVAsyncNSTaskFileOutputRedirection::completeStop()
{
    // A program that could not be started has only the reason to tell.
    if (error() && !hasRun()) {
        NURVAsyncNSTask::completeStop();
        return;
    }
    outputEnded();
    const QString text = results() ? results()->results() : QString();
    setResults(nullptr);
    if (hasRun() && isOutputWanted())
        writeOutput(text);
    NURVAsyncNSTask::completeStop();
}

void NURVAsyncNSTaskFileOutputRedirection::writeOutput(const QString &text)
{
    // What a program wrote that was killed is not all.
    if (const std::optional<ChildExit> exit = exitState(); exit && exit->signal != 0)
        return;
    QString reason;
    if (writeTextFileAtomically(m_fileName, text, &reason, LinkAtName::Replaced)) {
        ownOutcome().output = m_fileName;
        return;
    }
    couldNotWrite(u"Unable to write %1: %2"_s.arg(m_fileName, reason));
}

void NURVAsyncNSTaskFileOutputRedirection::couldNotWrite(const QString &problem)
{
    qCWarning(engineLog).noquote() << problem;
}

} // namespace nurv
