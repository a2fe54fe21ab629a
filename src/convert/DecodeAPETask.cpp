// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeAPETask.h"

#include "programs/MonkeysAudio.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeAPETask::DecodeAPETask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                             const QString &format)
    : StagedDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeAPETask::openingStatus() const
{
    return u"Decoding From Monkey's Audio"_s;
}

std::optional<ProgramStage> DecodeAPETask::decoding(const QString &made) const
{
    return monkeysAudio::decoding(fileName(), made);
}

void DecodeAPETask::doDecodeCall()
{
    decode();
}

} // namespace nurv
