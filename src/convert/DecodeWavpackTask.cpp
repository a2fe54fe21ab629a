// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeWavpackTask.h"

#include "app/PathNames.h"
#include "programs/Wavpack.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeWavpackTask::DecodeWavpackTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                     const QString &format)
    : StagedDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeWavpackTask::openingStatus() const
{
    return u"Decoding From Wavpack"_s;
}

std::optional<ProgramStage> DecodeWavpackTask::decoding(const QString &made) const
{
    return wavpack::decoding(fileName(), isToAiff(), made);
}

void DecodeWavpackTask::doDecodeCall()
{
    if (isToAiff())
        decodeThroughIntermediateWav();
    else
        decodeTo(outputFile());
}

QString DecodeWavpackTask::intermediateFile() const
{
    return isToAiff() ? nurv::outputPath(outputPath(), fileName(), u"wav"_s) : QString();
}

} // namespace nurv
