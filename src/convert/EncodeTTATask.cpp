// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeTTATask.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeTTATask::EncodeTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath)
    : TwoStageEncodeTask(queue, fileName, outputPath, u"tta"_s)
{
}

QString EncodeTTATask::openingStatus() const
{
    return u"Encoding to TTA"_s;
}

void EncodeTTATask::doEncodeCall()
{
    encodeWav([this](const QString &input) { return toolStages::encodeTta(input, outputFile()); });
    // `ttaenc` decodes what is a TTA file already.
    refuseOutputThatBegins("RIFF");
}

} // namespace nurv
