// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ShntoolConversionTask.h"

#include "app/PathNames.h"
#include "programs/Shntool.h"

namespace nurv {

ShntoolConversionTask::ShntoolConversionTask(NURVTaskQueue *queue, const QString &launchPath,
                                             const QStringList &arguments)
    : ConversionTask(queue, launchPath, arguments, arguments.value(shntool::kSourcePlace))
{
}

QString ShntoolConversionTask::intermediateFile() const
{
    if (shntool::replacesExtension(pathExtension(fileName())))
        return {};
    const QString output = outputFile();
    const QString made = joinPath(folderOf(output), lastPathComponent(fileName()) + u'.' + pathExtension(output));
    return made == output ? QString() : made;
}

} // namespace nurv
