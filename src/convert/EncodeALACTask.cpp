// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeALACTask.h"

#include "app/PathNames.h"
#include "app/Util.h"
#include "originals/StageFile.h"
#include "programs/AtomicParsley.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

using namespace Qt::StringLiterals;

namespace nurv {

EncodeALACTask::EncodeALACTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath)
    : StagedEncodeTask(queue, fileName, outputPath, u"m4a"_s)
{
}

QString EncodeALACTask::openingStatus() const
{
    return u"Encoding to Apple Lossless"_s;
}

std::optional<ProgramStage> EncodeALACTask::decoding(const QString &made) const
{
    std::optional<ProgramStage> stage = decodingToWav(made);
    return stage ? std::optional(stage->unwatched()) : std::nullopt;
}

NeededPrograms EncodeALACTask::tagPrograms() const
{
    return {{atomicParsley::program().name}, {}};
}

void EncodeALACTask::doEncodeCall()
{
    const QString format = formatWord(fileName());
    if (format == u"SHN")
        encodeDecoded(u"Decoding SHN to Wav"_s);
    else if (format == u"FLAC")
        encodeDecoded(u"Decoding FLAC to Wav"_s);
    else if (format == u"APE")
        encodeDecoded(u"Decoding APE to Wav"_s);
    else if (format == u"WV")
        encodeDecoded(u"Decoding Wavepack to Wav"_s);
    else if (format == u"TTA")
        encodeDecoded(u"Decoding TTA to Wav"_s);
    else
        encode(fileName());
    if (!error())
        finishOutput();
}

void EncodeALACTask::encode(const QString &input)
{
    convertToOutput(input, kFormatAppleLossless, kFileM4A);
}

void EncodeALACTask::encodeDecoded(const QString &status)
{
    if (cancelled())
        return;
    showStatus(status);
    StageFile wav(outputPath());
    decodeTo(wav.path());
    checkTemporaryWav(wav.path());
    encode(wav.path());
    if (!cancelled())
        Util::deleteFile(wav.path());
    wav.giveUp();
}

void EncodeALACTask::finishOutput()
{
    copyTags([this] { writeTags(); }, u"Error writing tags to file %1:\n"_s.arg(outputFile()));
    if (!cancelled())
        optimizeFile(outputFile());
}

void EncodeALACTask::writeTags()
{
    const QString format = formatWord(fileName());
    if (format == u"FLAC")
        handleFlacTags();
    else if (format == u"AIFF")
        handleAiffTags();
    else if (format == u"WV")
        handleWavpackTags();
    else if (format == u"APE")
        handleApeTags();
    else if (format == u"TTA")
        handleTtaTags();
    else
        setEncoderTag();
}

void EncodeALACTask::handleFlacTags()
{
    showStatus(u"Copying FLAC Tags"_s);
    writeRecord(TagLibTagsHelper::tagsForFlacFile(fileName()));
}

void EncodeALACTask::handleAiffTags()
{
    showStatus(u"Copying AIFF Tags"_s);
    writeRecord(TagLibTagsHelper::tagsForAIFFFile(fileName()));
}

void EncodeALACTask::handleWavpackTags()
{
    showStatus(u"Copying Wavpack Tags"_s);
    writeRecord(TagLibTagsHelper::tagsForWavpackFile(fileName()));
}

void EncodeALACTask::handleApeTags()
{
    showStatus(u"Copying APE Tags"_s);
    writeRecord(TagLibTagsHelper::tagsForAPEFile(fileName()));
}

void EncodeALACTask::handleTtaTags()
{
    showStatus(u"Copying TTA Tags"_s);
    writeRecord(TagLibTagsHelper::tagsForTTAFile(fileName()));
}

void EncodeALACTask::setEncoderTag()
{
    writeRecord(TagsObject());
}

void EncodeALACTask::writeRecord(const TagsObject &tags)
{
    const std::optional<QString> unrendered = AACTagsHelper::writeTagsForFile(outputFile(), tags, false, true);
    noteLostPicture(unrendered ? unrendered : tags.albumArtFault());
}

void EncodeALACTask::optimizeFile(const QString &path)
{
    showStatus(u"Making Gapless"_s);
    AACTagsHelper::makeGapless(path, [this] { return cancelled(); });
}

void EncodeALACTask::cleanup()
{
    // Before the row is painted and the set is looked at: it opens no output window.
    dropResultsUnlessFailed();
}

} // namespace nurv
