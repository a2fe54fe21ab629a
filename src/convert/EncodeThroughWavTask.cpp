// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeThroughWavTask.h"

#include "app/PathNames.h"
#include "originals/StageFile.h"
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

/// The decoder's stage; it is watched like the encoder's.
ToolStage decodingOf(const QString &sourceFormat, const QString &source, const QString &wav)
{
    ToolStage stage = sourceFormat == u"SHN"    ? toolStages::shortenToWav(source, wav)
                      : sourceFormat == u"FLAC" ? toolStages::flacToWav(source, wav)
                      : sourceFormat == u"APE"  ? toolStages::monkeysAudioToWav(source, wav)
                      : sourceFormat == u"WV"   ? toolStages::wavpackToWav(source, wav)
                                                : toolStages::ttaToWav(source, wav);
    stage.stopsOnError = true;
    stage.stopsOnCancel = true;
    stage.looksAtExitStatus = true;
    return stage;
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
    : TwoStageEncodeTask(queue, fileName, outputPath, encoding.format.toLower()), m_encoding(std::move(encoding))
{
    if (results)
        setResults(std::move(results));
}

QString EncodeThroughWavTask::openingStatus() const
{
    return decodingStatuses().value(formatWord(fileName()));
}

void EncodeThroughWavTask::doEncodeCall()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    if (!decodeTo(wav.path()))
        return;
    // flac gives its output the permissions of its input.
    wav.grantUsualAccess();
    runTool(encodingOf(wav.path()));
}

bool EncodeThroughWavTask::decodeTo(const QString &wav)
{
    const QString format = formatWord(fileName());
    if (format == u"M4A" || isAiff(format))
        convertToWav(fileName(), wav);
    else if (runTool(decodingOf(format, fileName(), wav)))
        checkTemporaryWav(wav);
    else
        return false;
    return !error() && !cancelled();
}

ToolStage EncodeThroughWavTask::encodingOf(const QString &wav) const
{
    if (m_encoding.format == u"SHN")
        return toolStages::encodeShorten(wav, outputFile());
    if (m_encoding.format == u"WV")
        return toolStages::encodeWavpack(m_encoding.level, wav, outputFile());
    if (m_encoding.format == u"TTA")
        return toolStages::encodeTta(wav, outputFile());
    if (m_encoding.format == u"APE")
        return toolStages::encodeMonkeysAudio(m_encoding.level, wav, outputFile());
    conversionArguments::FlacEncoding encoding = m_encoding.flac;
    // There is nothing foreign in a temporary WAV, and what is to be replaced has been moved aside.
    encoding.keepForeignMetadata = false;
    encoding.overwrite = false;
    ToolStage stage = toolStages::encodeFlac(false, wav, outputFile());
    stage.arguments = conversionArguments::encodeFlac(encoding, wav, outputFile());
    // What a TTA file is decoded to does not say which channel is which; nor does the file.
    if (formatWord(fileName()) == u"TTA" && channelsOf(wav) > kMostUnmappedChannels)
        stage.arguments.prepend(u"--channel-map=none"_s);
    stage.replacesOutput = m_encoding.flac.overwrite;
    return stage;
}

void EncodeThroughWavTask::cleanup()
{
    const bool takesTags = m_encoding.format == u"FLAC" || m_encoding.format == u"WV" || m_encoding.format == u"APE";
    if (takesTags && formatWord(fileName()) != u"SHN")
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
