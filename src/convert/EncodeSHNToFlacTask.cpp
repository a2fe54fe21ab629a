// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeSHNToFlacTask.h"

#include "app/PathNames.h"
#include "programs/Shntool.h"
#include "tags/TagLibTagsHelper.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeSHNToFlacTask::EncodeSHNToFlacTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                                         const QString &type, std::shared_ptr<NURVTaskResults> results)
    : ShntoolConversionTask(queue, launchPath, arguments),
      m_outputPath(arguments.value(shntool::kFlacFolderPlace)), m_type(type)
{
    setResults(std::move(results));
    setDecoderUnwatched();
}

QString EncodeSHNToFlacTask::outputFile() const
{
    return nurv::outputPath(m_outputPath, fileName(), u"flac"_s);
}

ChunkReport EncodeSHNToFlacTask::parseOutput(const QString &chunk) const
{
    return shntool::parseToFlac(chunk, m_type);
}

void EncodeSHNToFlacTask::finishOutput()
{
    if (formatWord(fileName()) == u"APE")
        copyTags([this] { getApeTags(); });
}

void EncodeSHNToFlacTask::cleanup()
{
    deleteSourceIfDone();
}

void EncodeSHNToFlacTask::getApeTags()
{
    const TagsObject tags = TagLibTagsHelper::tagsForAPEFile(fileName());
    showStatus(u"Writing Flac Tags"_s);
    TagLibTagsHelper::writeTagsForFLACFile(outputFile(), tags, false);
    noteLostPicture(tags.albumArtFault());
}

void EncodeSHNToFlacTask::finalCleanup()
{
    dropResultsUnlessFailed();
    ShntoolConversionTask::finalCleanup();
}

} // namespace nurv
