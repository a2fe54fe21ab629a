// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolStripTask.h"

#include "programs/ShntoolModes.h"

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolStripTask::SHNToolStripTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : SHNToolEditTask(queue, launchPath, arguments,
                      editsOfEach(arguments, u"-stripped"_s, SoundComparison::Relation::Equal))
{
    setTextFieldString(u"Running SHNTool Strip"_s);
    setTextFieldValue();
}

} // namespace nurv
