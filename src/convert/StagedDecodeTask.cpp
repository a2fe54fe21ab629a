// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedDecodeTask.h"

#include "files/FileStatus.h"
#include "originals/StageFile.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace nurv {

QString StagedDecodeTask::extensionOf(const QString &format)
{
    return format == u"AIFF" ? u"aiff"_s : u"wav"_s;
}

StagedDecodeTask::StagedDecodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                       const QString &format)
    : StagedTask(queue, fileName, outputPath, extensionOf(format)), m_format(format)
{
}

void StagedDecodeTask::decode()
{
    if (isToAiff())
        decodeThroughTemporaryWav();
    else
        decodeTo(outputFile());
}

void StagedDecodeTask::decodeThroughTemporaryWav()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    decodeTo(wav.path());
    checkTemporaryWav(wav.path());
    convertToAiff(wav.path());
}

void StagedDecodeTask::decodeThroughIntermediateWav()
{
    const QString wav = intermediateFile();
    OutputClaim claim;
    // In this order: what another job made and let go of before is seen then.
    if (claim.take(wav, fileName(), nullptr) || isThere(wav)) {
        decodeThroughTemporaryWav();
        return;
    }
    noteIntermediateBegun();
    const auto removeWav = qScopeGuard([&] {
        removeHalfMade(wav);
        noteIntermediateGone();
    });
    decodeTo(wav);
    checkTemporaryWav(wav);
    convertToAiff(wav);
}

void StagedDecodeTask::convertToAiff(const QString &wav)
{
    convertToOutput(wav, kFormatLinearPCM, kFileAIFF);
}

} // namespace nurv
