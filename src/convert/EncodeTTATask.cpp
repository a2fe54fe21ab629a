// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeTTATask.h"

#include "programs/Ttaenc.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeTTATask::EncodeTTATask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath)
    : StagedEncodeTask(queue, fileName, outputPath, u"tta"_s)
{
}

QString EncodeTTATask::openingStatus() const
{
    return u"Encoding to TTA"_s;
}

std::optional<ProgramStage> EncodeTTATask::encoding(const QString &input) const
{
    return withoutStatus(ttaenc::encoding(input, outputFile()));
}

void EncodeTTATask::doEncodeCall()
{
    encodeWav();
    // `ttaenc` decodes what is a TTA file already.
    refuseOutputThatBegins("RIFF");
}

} // namespace nurv
