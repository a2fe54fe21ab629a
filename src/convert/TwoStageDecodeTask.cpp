// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/TwoStageDecodeTask.h"

#include "convert/ConversionArguments.h"
#include "originals/StageFile.h"
#include "platform/FileFacts.h"

#include <QScopeGuard>

namespace nurv {

TwoStageDecodeTask::TwoStageDecodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                       const QString &format)
    : TwoStageTask(queue, fileName, outputPath, conversionArguments::decodedExtension(format)), m_format(format)
{
}

void TwoStageDecodeTask::decode(const StageFor &stageFor)
{
    if (isToAiff())
        decodeThroughTemporaryWav(stageFor);
    else
        runTool(stageFor(outputFile()));
}

void TwoStageDecodeTask::decodeThroughTemporaryWav(const StageFor &stageFor)
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    runTool(stageFor(wav.path()));
    checkTemporaryWav(wav.path());
    convertToAiff(wav.path());
}

void TwoStageDecodeTask::decodeThroughIntermediateWav(const StageFor &stageFor)
{
    const QString wav = intermediateFile();
    OutputClaim claim;
    // In this order: what another job made and let go of before is seen then.
    if (claim.take(wav, fileName(), nullptr) || isThere(wav)) {
        decodeThroughTemporaryWav(stageFor);
        return;
    }
    noteIntermediateBegun();
    const auto removeWav = qScopeGuard([&] {
        removeHalfMade(wav);
        noteIntermediateGone();
    });
    runTool(stageFor(wav));
    checkTemporaryWav(wav);
    convertToAiff(wav);
}

void TwoStageDecodeTask::convertToAiff(const QString &wav)
{
    convertToOutput(wav, kFormatLinearPCM, kFileAIFF);
}

} // namespace nurv
