// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PreviewTask.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

PreviewTask::PreviewTask(NURVTaskQueue *queue, EditPreview preview) : NURVInProcessTask(queue), m_preview(std::move(preview))
{
    nameRow(u"Preview"_s);
}

void PreviewTask::doStartTask()
{
    showStarted();
    appendResultsForSelf(m_preview.text());
    ownOutcome().isReport = true;
    if (m_preview.obstacles().isEmpty())
        return;
    ownOutcome().problem = u"this would fail"_s;
    setError(true);
}

} // namespace nurv
