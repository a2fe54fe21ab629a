// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolCueTask.h"

#include "app/PathNames.h"
#include "engine/NURVTaskResults.h"
#include "files/FileStatus.h"
#include "programs/ExternalPrograms.h"
#include "programs/Shntool.h"
#include "programs/ShntoolModes.h"
#include "samples/SoundLength.h"

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolCueTask::SHNToolCueTask(const QString &sheet, NURVTaskQueue *queue, const QString &launchPath,
                               const QStringList &arguments)
    : NURVAsyncNSTaskFileOutputRedirection(sheet, queue, launchPath, arguments), m_before(statusOfName(sheet))
{
}

int SHNToolCueTask::sourceCount() const
{
    return static_cast<int>(arguments().size() - shntool::cueSheetArguments({}).size());
}

void SHNToolCueTask::startTask()
{
    const QString name = lastPathComponent(fileName());
    std::optional<QString> obstacle;
    if (isLink(fileName()))
        obstacle = u"its output name %1 is a link"_s.arg(name);
    else if (isThere(fileName()) && !isPlainFile(fileName()))
        obstacle = u"its output name %1 is no file"_s.arg(name);
    else
        obstacle = m_claim.take(fileName(), arguments().last(), nullptr);
    if (!obstacle) {
        NURVAsyncNSTaskFileOutputRedirection::startTask();
        return;
    }
    becomeActive();
    showMainLine(title());
    ownOutcome().problem = *obstacle;
    failToStart(*obstacle + u'\n');
}

/// Another job, or somebody else, may have written a file of that name since the user agreed to its loss.
bool SHNToolCueTask::isSheetAsItWas() const
{
    const std::optional<struct stat> now = statusOfName(fileName());
    return now.has_value() == m_before.has_value() && (!now || isUntouched(*m_before, *now));
}

void SHNToolCueTask::outputEnded()
{
    const std::optional<ChildExit> exit = exitState();
    if (exit && !exit->succeeded() && results())
        m_complaint = results()->results();
}

/// What a program says that fails is no cue sheet, and takes the place of none.
bool SHNToolCueTask::isOutputWanted() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded() && !cancelled() && isSheetAsItWas();
}

void SHNToolCueTask::couldNotWrite(const QString &problem)
{
    NURVAsyncNSTaskFileOutputRedirection::couldNotWrite(problem);
    fail(problem, problem + u'\n');
}

void SHNToolCueTask::cleanup()
{
    if (!hasRun() || cancelled() || !outcome().problem.isEmpty())
        return;
    const std::optional<ChildExit> exit = exitState();
    if (exit && exit->signal != 0) {
        const QString killed = killedProgramText(shntool::program().name, exit->signal, title());
        fail(killed.trimmed().section(u'\n', 0, 0), m_complaint + killed);
    } else if (error()) {
        fail(shntool::lastProblem(m_complaint).withFile(), m_complaint);
    } else if (outcome().output.isEmpty()) {
        const QString taken =
            u"%1 has changed since it was chosen, and stays as it is"_s.arg(lastPathComponent(fileName()));
        fail(taken, taken + u'\n');
    } else {
        warnOfCutSources();
    }
}

/// The points of a sheet follow from what headers promise.
void SHNToolCueTask::warnOfCutSources()
{
    for (const QString &source : arguments().last(sourceCount())) {
        const std::optional<SoundLength> length = soundLength(source);
        if (!length || !length->declaredFrames || !length->heldFrames || *length->heldFrames >= *length->declaredFrames)
            continue;
        if (!results())
            openReport();
        warn(u"%1 holds less sound than its header tells"_s.arg(lastPathComponent(source)));
    }
}

void SHNToolCueTask::fail(const QString &problem, const QString &report)
{
    ownOutcome().problem = problem;
    openReport();
    failWith(report);
}

/// The sheet was the job's result, until now.
void SHNToolCueTask::openReport()
{
    const auto told = std::make_shared<NURVTaskResults>();
    told->addTaskInSet(*this);
    setResults(told);
}

} // namespace nurv
