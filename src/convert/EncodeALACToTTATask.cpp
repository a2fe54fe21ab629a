// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACToTTATask.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACToTTATask::EncodeALACToTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath)
    : TwoStageEncodeTask(queue, fileName, outputPath, u"tta"_s)
{
}

QString EncodeALACToTTATask::openingStatus() const
{
    return u"Encoding Apple Lossless to TTA"_s;
}

void EncodeALACToTTATask::doEncodeCall()
{
    encodeThroughWav([this](const QString &input) {
        ToolStage stage = toolStages::encodeTta(input, outputFile());
        stage.stopsOnError = true;
        return stage;
    });
}

void EncodeALACToTTATask::cleanup()
{
    dropResultsUnlessFailed();
    deleteSourceNow();
}

} // namespace nurv
