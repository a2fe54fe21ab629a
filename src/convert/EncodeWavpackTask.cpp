// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeWavpackTask.h"

#include "programs/Wavpack.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeWavpackTask::EncodeWavpackTask(NURVTaskQueue *queue, const QString &fileName, const QString &level,
                                     const QString &outputPath)
    : StagedEncodeTask(queue, fileName, outputPath, u"wv"_s), m_level(level)
{
}

QString EncodeWavpackTask::openingStatus() const
{
    return u"Encoding Wavpack"_s;
}

std::optional<ProgramStage> EncodeWavpackTask::encoding(const QString &input) const
{
    return withoutStatus(wavpack::encoding(m_level, input, outputFile()));
}

void EncodeWavpackTask::doEncodeCall()
{
    encodeWav();
}

} // namespace nurv
