// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACToTTATask.h"

#include "programs/Ttaenc.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACToTTATask::EncodeALACToTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath)
    : StagedEncodeTask(queue, fileName, outputPath, u"tta"_s)
{
}

QString EncodeALACToTTATask::openingStatus() const
{
    return u"Encoding Apple Lossless to TTA"_s;
}

std::optional<ProgramStage> EncodeALACToTTATask::encoding(const QString &input) const
{
    ProgramStage stage = ttaenc::encoding(input, outputFile());
    stage.stopsOnError = true;
    return stage;
}

void EncodeALACToTTATask::doEncodeCall()
{
    encodeThroughWav();
}

void EncodeALACToTTATask::cleanup()
{
    dropResultsUnlessFailed();
    deleteSourceNow();
}

} // namespace nurv
