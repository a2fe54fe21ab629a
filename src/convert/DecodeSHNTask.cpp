// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeSHNTask.h"

#include "app/PathNames.h"
#include "programs/Shntool.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeSHNTask::DecodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : ShntoolConversionTask(queue, launchPath, arguments)
{
}

QString DecodeSHNTask::outputFile() const
{
    // The format's name is the extension as well.
    return outputPath(arguments().value(shntool::kSourcePlace - 1), fileName(), arguments().value(2));
}

ChunkReport DecodeSHNTask::parseOutput(const QString &chunk) const
{
    return shntool::parseFromShorten(chunk);
}

void DecodeSHNTask::cleanup()
{
    deleteSourceIfDone();
    // Before the row is painted, so that the set opens no output window.
    dropResultsUnlessFailed();
}

} // namespace nurv
