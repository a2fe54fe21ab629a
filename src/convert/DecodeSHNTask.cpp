// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeSHNTask.h"

#include "app/PathNames.h"
#include "convert/ConversionArguments.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeSHNTask::DecodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : ConversionTask(queue, launchPath, arguments, arguments.value(conversionArguments::kShntoolSource))
{
}

QString DecodeSHNTask::outputFile() const
{
    // The format's name is the extension as well.
    return outputPath(arguments().value(conversionArguments::kShntoolSource - 1), fileName(), arguments().value(2));
}

QString DecodeSHNTask::intermediateFile() const
{
    const QString made = conversionArguments::shntoolOutput(fileName(), arguments().value(conversionArguments::kShntoolSource - 1), arguments().value(2));
    return made == outputFile() ? QString() : made;
}

toolOutput::ChunkReport DecodeSHNTask::parseOutput(const QString &chunk) const
{
    return toolOutput::parseShortenDecoding(chunk);
}

void DecodeSHNTask::cleanup()
{
    deleteSourceIfDone();
    // Before the row is painted, so that the set opens no output window.
    dropResultsUnlessFailed();
}

} // namespace nurv
