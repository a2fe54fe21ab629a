// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACToAPETask.h"

#include "programs/MonkeysAudio.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACToAPETask::EncodeALACToAPETask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                         const QString &level)
    : StagedEncodeTask(queue, fileName, outputPath, u"ape"_s), m_level(level)
{
}

QString EncodeALACToAPETask::openingStatus() const
{
    return u"Encoding Apple Lossless to APE"_s;
}

std::optional<ProgramStage> EncodeALACToAPETask::encoding(const QString &input) const
{
    return monkeysAudio::encoding(m_level, input, outputFile());
}

void EncodeALACToAPETask::doEncodeCall()
{
    encodeThroughWav();
}

void EncodeALACToAPETask::cleanup()
{
    // Before the tags: what they complain of reaches no set then.
    dropResultsUnlessFailed();
    copyTags([this] { getALACTags(); });
    deleteSourceNow();
}

void EncodeALACToAPETask::getALACTags()
{
    const TagsObject tags = AACTagsHelper::tagsForFile(fileName());
    showStatus(u"Writing APE Tags"_s);
    TagLibTagsHelper::writeTagsForAPEFile(outputFile(), tags, false);
    noteLostPicture(tags.albumArtFault());
}

} // namespace nurv
