// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeALACTask.h"

#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeALACTask::DecodeALACTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                               const QString &format)
    : StagedDecodeTask(queue, fileName, outputPath, format)
{
}

QString DecodeALACTask::openingStatus() const
{
    return u"Decoding From Apple Lossless"_s;
}

void DecodeALACTask::doDecodeCall()
{
    convertToOutput(fileName(), kFormatLinearPCM, isToAiff() ? kFileAIFF : kFileWave);
    if (isToAiff() && !error() && !cancelled())
        copyTags([this] { handleAlacTags(); });
}

void DecodeALACTask::handleAlacTags()
{
    showStatus(u"Copying ALAC Tags"_s);
    const TagsObject tags = AACTagsHelper::tagsForFile(fileName());
    TagLibTagsHelper::writeTagsForAIFFFile(outputFile(), tags);
    noteLostPicture(tags.albumArtFault());
}

void DecodeALACTask::cleanup()
{
    // Before the row is painted and the set is looked at: it opens no output window.
    dropResultsUnlessFailed();
}

} // namespace nurv
