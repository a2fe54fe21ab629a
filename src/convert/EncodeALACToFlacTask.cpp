// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACToFlacTask.h"

#include "programs/Flac.h"
#include "tags/AACTagsHelper.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACToFlacTask::EncodeALACToFlacTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                           int level, bool verify, std::shared_ptr<NURVTaskResults> results)
    : StagedEncodeTask(queue, fileName, outputPath, u"flac"_s), m_level(level), m_verify(verify)
{
    setResults(std::move(results));
}

QString EncodeALACToFlacTask::openingStatus() const
{
    return u"Encoding Apple Lossless to Flac"_s;
}

std::optional<ProgramStage> EncodeALACToFlacTask::encoding(const QString &input) const
{
    return flac::plainEncoding(m_verify, input, outputFile());
}

void EncodeALACToFlacTask::doEncodeCall()
{
    encodeThroughWav();
}

void EncodeALACToFlacTask::cleanup()
{
    copyTags([this] { getALACTags(); });
}

void EncodeALACToFlacTask::getALACTags()
{
    const TagsObject tags = AACTagsHelper::tagsForFile(fileName());
    showStatus(u"Writing Flac Tags"_s);
    writeFlacTags(tags);
}

} // namespace nurv
