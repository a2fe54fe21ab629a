// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeFlacTask.h"

#include "app/PathNames.h"
#include "programs/Flac.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

DecodeFlacTask::DecodeFlacTask(const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
                               const QStringList &arguments)
    : ConversionTask(queue, launchPath, arguments, fileName)
{
}

QString DecodeFlacTask::outputFile() const
{
    return arguments().value(arguments().size() - 1);
}

ChunkReport DecodeFlacTask::parseOutput(const QString &chunk) const
{
    return flac::parseDecoding(chunk);
}

void DecodeFlacTask::finishOutput()
{
    if (programSucceeded() && formatWord(outputFile()) == u"AIFF" && formatWord(fileName()) == u"FLAC")
        copyTags([this] { getFlacTags(); });
}

void DecodeFlacTask::cleanup()
{
    deleteSourceIfDone();
    // Before the row is painted, so that the set opens no output window.
    dropResultsUnlessFailed();
}

void DecodeFlacTask::getFlacTags()
{
    const TagsObject tags = TagLibTagsHelper::tagsForFlacFile(fileName());
    showStatus(u"Copying Flac Tags"_s);
    if (pathExtension(outputFile()) != u"aiff")
        return;
    TagLibTagsHelper::writeTagsForAIFFFile(outputFile(), tags);
    noteLostPicture(tags.albumArtFault());
}

} // namespace nurv
