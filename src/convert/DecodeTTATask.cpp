// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTTATask.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeTTATask::DecodeTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                             const QString &format)
    : TwoStageDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeTTATask::openingStatus() const
{
    return u"Decoding from TTA"_s;
}

void DecodeTTATask::doDecodeCall()
{
    decode([this](const QString &output) { return toolStages::decodeTta(fileName(), output); });
    // `ttaenc` encodes what is a WAV file.
    refuseOutputThatBegins("TTA1");
}

} // namespace nurv
