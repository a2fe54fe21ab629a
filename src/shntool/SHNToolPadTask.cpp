// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolPadTask.h"

#include "app/PathNames.h"
#include "programs/ShntoolModes.h"

using namespace Qt::StringLiterals;

namespace nurv {

SHNToolPadTask::SHNToolPadTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : SHNToolEditTask(queue, launchPath, arguments,
                      editsOfEach(arguments, u"-padded"_s, SoundComparison::Relation::Prefix))
{
    nameRow(lastPathComponent(sourcePath()));
}

} // namespace nurv
