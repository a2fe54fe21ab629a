// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeFlacTask.h"

#include "app/PathNames.h"
#include "programs/Flac.h"
#include "tags/TagLibTagsHelper.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeFlacTask::EncodeFlacTask(const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
                               const QStringList &arguments, std::shared_ptr<NURVTaskResults> results)
    : ConversionTask(queue, launchPath, arguments, fileName)
{
    setResults(std::move(results));
}

QString EncodeFlacTask::outputFile() const
{
    return arguments().value(arguments().size() - 1);
}

ChunkReport EncodeFlacTask::parseOutput(const QString &chunk) const
{
    return flac::parseEncoding(chunk);
}

bool EncodeFlacTask::replacesOutput() const
{
    return flac::replacesOutput(arguments());
}

void EncodeFlacTask::finishOutput()
{
    if (isAiff(formatWord(fileName())))
        copyTags([this] { getAiffTags(); });
}

void EncodeFlacTask::cleanup()
{
    deleteSourceIfDone();
}

void EncodeFlacTask::getAiffTags()
{
    showStatus(u"Reading AIFF Tags"_s);
    const TagsObject tags = TagLibTagsHelper::tagsForAIFFFile(fileName());
    showStatus(u"Writing Flac Tags"_s);
    TagLibTagsHelper::writeTagsForFLACFile(outputFile(), tags, true);
    noteLostPicture(tags.albumArtFault());
}

void EncodeFlacTask::finalCleanup()
{
    dropResultsUnlessFailed();
    ConversionTask::finalCleanup();
}

} // namespace nurv
