// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeAPETask.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeAPETask::DecodeAPETask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                             const QString &format)
    : TwoStageDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeAPETask::openingStatus() const
{
    return u"Decoding From Monkey's Audio"_s;
}

void DecodeAPETask::doDecodeCall()
{
    decode([this](const QString &output) { return toolStages::decodeMonkeysAudio(fileName(), output); });
}

} // namespace nurv
