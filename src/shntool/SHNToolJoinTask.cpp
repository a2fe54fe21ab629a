// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolJoinTask.h"

#include "app/PathNames.h"
#include "programs/ShntoolModes.h"
#include "text/TextNumbers.h"

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolJoinTask::SHNToolJoinTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : SHNToolEditTask(queue, launchPath, arguments,
                      {{.sources = arguments.sliced(shntool::kJoinSourcePlace),
                        .outputs = {{joinPath(arguments.at(shntool::kJoinFolderPlace),
                                                 shntool::joinedName(arguments.at(shntool::kJoinFormatPlace)))}},
                        .relation = SoundComparison::Relation::Equal}})
{
    nameRow(u"Joining Files"_s);
}

void SHNToolJoinTask::showOutput(const QString &chunk)
{
    const shntool::EditReport report = shntool::parseEdit(chunk);
    const QString &text = report.text;
    if (text.contains(u"Joining"_s))
        appendResultsForSelf(text.section(u": "_s, 0, 0));
    if (text.contains(u"Joining ["_s) && text.contains(u"] ("_s))
        showMainLine(lastPathComponent(text.section(u'[', 1).section(u"] ("_s, 0, 0)));
    if (text.contains(u"ERROR"_s) || text.contains(u"OK"_s))
        appendResultsForSelf(text);
    if (report.progress)
        showProgress(u"Joining Files: %1%"_s.arg(sixDecimals(*report.progress)), *report.progress);
}

} // namespace nurv
