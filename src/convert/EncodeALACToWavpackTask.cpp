// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACToWavpackTask.h"

#include "programs/Wavpack.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACToWavpackTask::EncodeALACToWavpackTask(NURVTaskQueue *queue, const QString &fileName,
                                                 const QString &outputPath, const QString &level)
    : StagedEncodeTask(queue, fileName, outputPath, u"wv"_s), m_level(level)
{
}

QString EncodeALACToWavpackTask::openingStatus() const
{
    return u"Encoding Apple Lossless to Wavpack"_s;
}

std::optional<ProgramStage> EncodeALACToWavpackTask::encoding(const QString &input) const
{
    return wavpack::encoding(m_level, input, outputFile());
}

void EncodeALACToWavpackTask::doEncodeCall()
{
    encodeThroughWav();
}

void EncodeALACToWavpackTask::cleanup()
{
    // Before the tags: what they complain of reaches no set then.
    dropResultsUnlessFailed();
    copyTags([this] { getALACTags(); });
    deleteSourceNow();
}

void EncodeALACToWavpackTask::getALACTags()
{
    const TagsObject tags = AACTagsHelper::tagsForFile(fileName());
    showStatus(u"Writing Wavpack Tags"_s);
    TagLibTagsHelper::writeTagsForWavpackFile(outputFile(), tags, false);
    noteLostPicture(tags.albumArtFault());
}

} // namespace nurv
