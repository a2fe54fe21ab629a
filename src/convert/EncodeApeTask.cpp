// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeApeTask.h"

#include "programs/MonkeysAudio.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeApeTask::EncodeApeTask(NURVTaskQueue *queue, const QString &fileName, const QString &level,
                             const QString &outputPath)
    : StagedEncodeTask(queue, fileName, outputPath, u"ape"_s), m_level(level)
{
}

QString EncodeApeTask::openingStatus() const
{
    return u"Encoding to Monkey's Audio"_s;
}

std::optional<ProgramStage> EncodeApeTask::encoding(const QString &input) const
{
    return withoutStatus(monkeysAudio::encoding(m_level, input, outputFile()));
}

void EncodeApeTask::doEncodeCall()
{
    encodeWav();
}

} // namespace nurv
