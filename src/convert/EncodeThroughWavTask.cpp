// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeThroughWavTask.h"

#include "app/PathNames.h"
#include "originals/StageFile.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shorten.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"
#include "samples/SoundLength.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

#include <QHash>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The first status line by the source's format word.
const QHash<QString, QString> &decodingStatuses()
{
    static const QHash<QString, QString> statuses{
        {u"SHN"_s, u"Decoding SHN to Wav"_s},     {u"FLAC"_s, u"Decoding FLAC to Wav"_s},
        {u"APE"_s, u"Decoding APE to Wav"_s},     {u"WV"_s, u"Decoding Wavepack to Wav"_s},
        {u"TTA"_s, u"Decoding TTA to Wav"_s},     {u"M4A"_s, u"Decoding Apple Lossless to Wav"_s},
        {u"AIFF"_s, u"Converting AIFF to Wav"_s}, {u"AIF"_s, u"Converting AIFF to Wav"_s},
    };
    return statuses;
}

/// Of more, a program has to be told which is which.
constexpr int kMostUnmappedChannels = 2;

int channelsOf(const QString &path)
{
    return soundLength(path).value_or(SoundLength{}).channels;
}

} // namespace

bool EncodeThroughWavTask::suits(const QString &sourceFormat, const QString &format)
{
    static const QHash<QString, QStringList> sources{
        {u"SHN"_s, {u"WV"_s, u"M4A"_s}},
        {u"FLAC"_s, {u"TTA"_s}},
        {u"WV"_s, {u"FLAC"_s, u"SHN"_s, u"APE"_s, u"TTA"_s}},
        {u"TTA"_s, {u"FLAC"_s, u"SHN"_s, u"APE"_s, u"WV"_s, u"TTA"_s}},
        {u"APE"_s, {u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"APE"_s}},
    };
    return sources.value(format).contains(sourceFormat);
}

bool EncodeThroughWavTask::suitsShapeOf(const QString &source, const QString &format)
{
    return format == u"FLAC" && isAiff(formatWord(source)) && channelsOf(source) > kMostUnmappedChannels;
}

EncodeThroughWavTask::EncodeThroughWavTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                           Encoding encoding, std::shared_ptr<NURVTaskResults> results)
    : StagedEncodeTask(queue, fileName, outputPath, encoding.format.toLower()), m_encoding(std::move(encoding))
{
    if (results)
        setResults(std::move(results));
}

QString EncodeThroughWavTask::openingStatus() const
{
    return decodingStatuses().value(formatWord(fileName()));
}

std::optional<ProgramStage> EncodeThroughWavTask::decoding(const QString &made) const
{
    return decodingToWav(made);
}

std::optional<ProgramStage> EncodeThroughWavTask::encoding(const QString &input) const
{
    if (m_encoding.format == u"SHN")
        return shorten::encoding(input, outputFile());
    if (m_encoding.format == u"WV")
        return wavpack::encoding(m_encoding.level, input, outputFile());
    if (m_encoding.format == u"TTA")
        return ttaenc::encoding(input, outputFile());
    if (m_encoding.format == u"APE")
        return monkeysAudio::encoding(m_encoding.level, input, outputFile());
    flac::Encoding encoding = m_encoding.flac;
    // There is nothing foreign in a temporary WAV, and what is to be replaced has been moved aside.
    encoding.keepForeignMetadata = false;
    encoding.overwrite = false;
    // What a TTA file is decoded to does not say which channel is which; nor does the file.
    encoding.hasNoChannelMap = formatWord(fileName()) == u"TTA" && channelsOf(input) > kMostUnmappedChannels;
    ProgramStage stage = flac::encoding(encoding, input, outputFile());
    stage.replacesOutput = m_encoding.flac.overwrite;
    return stage;
}

NeededPrograms EncodeThroughWavTask::tagPrograms() const
{
    return takesTags() && m_encoding.format == u"FLAC" ? flacTagPrograms() : NeededPrograms();
}

void EncodeThroughWavTask::doEncodeCall()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    if (!makeWav(wav.path()))
        return;
    // flac gives its output the permissions of its input.
    wav.grantUsualAccess();
    encodeFrom(wav.path());
}

bool EncodeThroughWavTask::makeWav(const QString &wav)
{
    const QString format = formatWord(fileName());
    if (format == u"M4A" || isAiff(format))
        convertToWav(fileName(), wav);
    else if (decodeTo(wav))
        checkTemporaryWav(wav);
    else
        return false;
    return !error() && !cancelled();
}

bool EncodeThroughWavTask::takesTags() const
{
    const bool hasPlace = m_encoding.format == u"FLAC" || m_encoding.format == u"WV" || m_encoding.format == u"APE";
    return hasPlace && formatWord(fileName()) != u"SHN";
}

void EncodeThroughWavTask::cleanup()
{
    if (takesTags())
        copyTags([this] { writeTags(); });
}

TagsObject EncodeThroughWavTask::readTags() const
{
    const QString format = formatWord(fileName());
    if (format == u"FLAC")
        return TagLibTagsHelper::tagsForFlacFile(fileName());
    if (format == u"APE")
        return TagLibTagsHelper::tagsForAPEFile(fileName());
    if (format == u"WV")
        return TagLibTagsHelper::tagsForWavpackFile(fileName());
    if (format == u"TTA")
        return TagLibTagsHelper::tagsForTTAFile(fileName());
    if (isAiff(format))
        return TagLibTagsHelper::tagsForAIFFFile(fileName());
    return AACTagsHelper::tagsForFile(fileName());
}

void EncodeThroughWavTask::writeTags()
{
    const TagsObject tags = readTags();
    if (m_encoding.format == u"WV") {
        showStatus(u"Writing Wavpack Tags"_s);
        TagLibTagsHelper::writeTagsForWavpackFile(outputFile(), tags, false);
    } else if (m_encoding.format == u"APE") {
        showStatus(u"Writing APE Tags"_s);
        TagLibTagsHelper::writeTagsForAPEFile(outputFile(), tags, false);
    } else {
        showStatus(u"Writing Flac Tags"_s);
        writeFlacTags(tags);
        return;
    }
    noteLostPicture(tags.albumArtFault());
}

} // namespace nurv
