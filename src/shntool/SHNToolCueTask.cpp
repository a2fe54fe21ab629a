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

int SHNToolCueTask::sourceCount() const
{
    return static_cast<int>(arguments().size() - shntool::cueSheetArguments({}).size());
}

void SHNToolCueTask::startTask()
{
    if (!isThere(fileName()) || isPlainFile(fileName())) {
        NURVAsyncNSTaskFileOutputRedirection::startTask();
        return;
    }
    becomeActive();
    showMainLine(title());
    ownOutcome().problem = (isLink(fileName()) ? u"its output name %1 is a link"_s : u"its output name %1 is no file"_s)
                               .arg(lastPathComponent(fileName()));
    failToStart(outcome().problem + u'\n');
}

void SHNToolCueTask::outputEnded()
{
    if (!isOutputWanted() && results())
        m_complaint = results()->results();
}

/// What a program says that fails is no cue sheet, and takes the place of none.
bool SHNToolCueTask::isOutputWanted() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded();
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
        fail(shntool::lastProblem(m_complaint), m_complaint);
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
