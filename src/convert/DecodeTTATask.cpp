// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeTTATask.h"

#include "programs/Ttaenc.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeTTATask::DecodeTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                             const QString &format)
    : StagedDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeTTATask::openingStatus() const
{
    return u"Decoding from TTA"_s;
}

std::optional<ProgramStage> DecodeTTATask::decoding(const QString &made) const
{
    return ttaenc::decoding(fileName(), made);
}

void DecodeTTATask::doDecodeCall()
{
    decode();
    // `ttaenc` encodes what is a WAV file.
    refuseOutputThatBegins("TTA1");
}

} // namespace nurv
