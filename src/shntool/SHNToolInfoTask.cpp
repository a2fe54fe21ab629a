// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolInfoTask.h"

#include "programs/ShntoolModes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolInfoTask::SHNToolInfoTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : NURVAsyncNSTask(queue, launchPath, arguments)
{
    nameRow(u"Running SHNTool Info"_s);
    ownOutcome().isReport = true;
}

int SHNToolInfoTask::sourceCount() const
{
    return static_cast<int>(arguments().size() - shntool::informationArguments({}).size());
}

void SHNToolInfoTask::processTaskOutput(const QString &chunk)
{
    m_output += chunk;
    NURVAsyncNSTask::processTaskOutput(chunk);
}

void SHNToolInfoTask::cleanup()
{
    if (!error() || cancelled())
        return;
    // The first says what is wrong with a file, the next what follows from it.
    const QString problem = shntool::problemLines(m_output).section(u'\n', 0, 0);
    ownOutcome().problem = shntool::lastProblem(problem).withFile();
    const QStringList lines = m_output.split(u'\n');
    const auto told = std::count_if(lines.begin(), lines.end(),
                                    [](const QString &line) { return line.startsWith(u"File name: "_s); });
    ownOutcome().failedSources = sourceCount() - static_cast<int>(told);
}

} // namespace nurv
