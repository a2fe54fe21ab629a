// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolCueTask.h"

#include "engine/NURVTaskResults.h"
#include "programs/ShntoolModes.h"

namespace nurv {

int SHNToolCueTask::sourceCount() const
{
    return static_cast<int>(arguments().size() - shntool::cueSheetArguments({}).size());
}

void SHNToolCueTask::couldNotWrite(const QString &problem)
{
    NURVAsyncNSTaskFileOutputRedirection::couldNotWrite(problem);
    ownOutcome().problem = problem;
    // The sheet was the job's result.
    const auto told = std::make_shared<NURVTaskResults>();
    told->addTaskInSet(*this);
    setResults(told);
    failWith(problem + u'\n');
}

} // namespace nurv
