// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeWavpackToFlacTask.h"

#include "originals/StageFile.h"
#include "tags/TagLibTagsHelper.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeWavpackToFlacTask::EncodeWavpackToFlacTask(NURVTaskQueue *queue, const QString &fileName,
                                                 const QString &outputPath, int level, bool verify,
                                                 std::shared_ptr<NURVTaskResults> results)
    : TwoStageEncodeTask(queue, fileName, outputPath, u"flac"_s), m_level(level), m_verify(verify)
{
    setResults(std::move(results));
}

QString EncodeWavpackToFlacTask::openingStatus() const
{
    return u"Encoding Wavpack to FLAC"_s;
}

void EncodeWavpackToFlacTask::doEncodeCall()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    convertWavpackToWav(wav.path());
    wav.grantUsualAccess();
    runTool(toolStages::encodeFlac(m_verify, wav.path(), outputFile()));
}

void EncodeWavpackToFlacTask::convertWavpackToWav(const QString &wav)
{
    runTool(toolStages::wavpackToWavForFlac(fileName(), wav));
    checkTemporaryWav(wav);
}

void EncodeWavpackToFlacTask::cleanup()
{
    copyTags([this] { getWavpackTags(); });
}

void EncodeWavpackToFlacTask::getWavpackTags()
{
    const TagsObject tags = TagLibTagsHelper::tagsForWavpackFile(fileName());
    showStatus(u"Writing FLAC Tags"_s);
    writeFlacTags(tags);
}

} // namespace nurv
