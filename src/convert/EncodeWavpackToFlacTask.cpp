// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeWavpackToFlacTask.h"

#include "originals/StageFile.h"
#include "programs/Flac.h"
#include "programs/Wavpack.h"
#include "tags/TagLibTagsHelper.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeWavpackToFlacTask::EncodeWavpackToFlacTask(NURVTaskQueue *queue, const QString &fileName,
                                                 const QString &outputPath, int level, bool verify,
                                                 std::shared_ptr<NURVTaskResults> results)
    : StagedEncodeTask(queue, fileName, outputPath, u"flac"_s), m_level(level), m_verify(verify)
{
    setResults(std::move(results));
}

QString EncodeWavpackToFlacTask::openingStatus() const
{
    return u"Encoding Wavpack to FLAC"_s;
}

std::optional<ProgramStage> EncodeWavpackToFlacTask::decoding(const QString &made) const
{
    return wavpack::decodingToWavForFlac(fileName(), made);
}

std::optional<ProgramStage> EncodeWavpackToFlacTask::encoding(const QString &input) const
{
    return flac::plainEncoding(m_verify, input, outputFile());
}

void EncodeWavpackToFlacTask::doEncodeCall()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    convertWavpackToWav(wav.path());
    wav.grantUsualAccess();
    encodeFrom(wav.path());
}

void EncodeWavpackToFlacTask::convertWavpackToWav(const QString &wav)
{
    decodeTo(wav);
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
