// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/EncodeOpusTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "programs/Flac.h"
#include "programs/Shntool.h"
#include "samples/SoundLength.h"
#include "tags/AACTagsHelper.h"
#include "tags/TagLibTagsHelper.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeOpusTask::EncodeOpusTask(NURVTaskQueue *queue, const QString &fileName, const QString &type,
                               const QString &outputPath, int bitRate, double frameSize)
    : LossyEncodeTask(queue, fileName, outputPath, u"opus"_s), m_encoding{type, bitRate, frameSize}
{
}

QString EncodeOpusTask::openingStatus() const
{
    return u"Encoding to Opus"_s;
}

std::optional<ProgramStage> EncodeOpusTask::decoding(const QString &made) const
{
    const QString format = formatWord(fileName());
    if (format == u"FLAC")
        return flac::decodingToWavForOpus(fileName(), made);
    if (format == u"SHN")
        return shntool::shortenToWavForOpus(fileName(), made);
    return decodingToWav(made);
}

std::optional<ProgramStage> EncodeOpusTask::encoding(const QString &input) const
{
    if (!m_encoding.modeWord() || !m_encoding.frameSizeWord())
        return std::nullopt;
    return opusenc::encoding(m_encoding, m_texts, input, namedAfter(input));
}

void EncodeOpusTask::doEncodeCall()
{
    if (!encoding(fileName())) {
        const QString problem = u"Opus has no mode \"%1\" with frames of %2 ms"_s.arg(m_encoding.type).arg(m_encoding.frameSize);
        noteProblem(problem);
        failWith(problemLine(problem));
        return;
    }
    readTexts();
    if (goesThroughWav())
        encodeDecoded([this](const QString &wav) { encode(wav); });
    else
        encode(fileName());
}

bool EncodeOpusTask::goesThroughWav() const
{
    const QString format = formatWord(fileName());
    if (needsDecoder() || format == u"M4A")
        return true;
    // opusenc reads AIFF of 8 and 16 bits only, and no WAV of integers above 24, whatever the file's name says.
    QFile source(fileName());
    const QByteArray beginning = source.open(QIODevice::ReadOnly) ? source.read(4) : QByteArray();
    const int bits = soundLength(fileName()).value_or(SoundLength{}).bitsPerSample;
    if (beginning == "FORM")
        return bits != 0 && bits != 8 && bits != 16;
    return beginning == "RIFF" && bits == 32 && !hasFloatingPoint();
}

void EncodeOpusTask::encode(const QString &input)
{
    startIndeterminateProgressBar();
    showStatus(u"Encoding To Opus"_s);
    if (namedAfter(input) == outputFile())
        encodeFrom(input);
    else
        encodeUnderName(*encoding(input), namedAfter(input));
}

void EncodeOpusTask::readTexts()
{
    const QString format = formatWord(fileName());
    if (format != u"FLAC" && format != u"M4A")
        return;
    try {
        const TagsObject tags =
            format == u"FLAC" ? TagLibTagsHelper::tagsForFlacFile(fileName()) : AACTagsHelper::tagsForFile(fileName());
        m_texts = {tags.titleText(), tags.artistText()};
    } catch (const NurvFailure &failure) {
        m_unreadTags = failure.reason();
    }
}

void EncodeOpusTask::cleanup()
{
    stopIndeterminateProgressBar();
    if (!m_unreadTags.isEmpty() && !cancelled())
        noteLostTags(m_unreadTags);
    LossyEncodeTask::cleanup();
}

} // namespace nurv
