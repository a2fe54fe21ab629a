// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolCompareTask.h"

#include "programs/ProgramOutput.h"

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolCompareTask::SHNToolCompareTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : NURVAsyncNSTask(queue, launchPath, arguments)
{
    ownOutcome().isReport = true;
}

void SHNToolCompareTask::processTaskOutput(const QString &chunk)
{
    m_output += chunk;
}

void SHNToolCompareTask::completeStop()
{
    // Before what is said of a run that was killed.
    if (!m_output.isEmpty())
        appendResultsForSelf(programOutput::asOnATerminal(m_output));
    NURVAsyncNSTask::completeStop();
}

void SHNToolCompareTask::cleanup()
{
    if (!error() && !cancelled() && m_output.contains(u"WAVE data size differs"_s))
        warn(u"one of the files is longer than the other"_s);
}

} // namespace nurv
