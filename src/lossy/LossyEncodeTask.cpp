// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyEncodeTask.h"

#include "app/PathNames.h"
#include "audio/AudioFileHeader.h"
#include "originals/StageFile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv {

LossyEncodeTask::LossyEncodeTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                                 const QString &extension)
    : StagedEncodeTask(queue, fileName, outputPath, extension)
{
    setOutputIsLossy();
}

QString LossyEncodeTask::decodingStatus() const
{
    const QString format = formatWord(fileName());
    if (format == u"M4A")
        return u"Decoding ALAC to Wav"_s;
    if (format == u"WV")
        return u"Decoding Wavepack to Wav"_s;
    return u"Decoding %1 to Wav"_s.arg(format);
}

bool LossyEncodeTask::hasFloatingPoint() const
{
    AudioFileStatus status = AudioFileStatus::Ok;
    const auto header = AudioFileHeader::read(fileName(), status);
    return header && header->format().formatId == kFormatLinearPCM && (header->format().formatFlags & kFlagFloat) != 0;
}

void LossyEncodeTask::encodeDecoded(const std::function<void(const QString &wav)> &encode)
{
    if (cancelled())
        return;
    showStatus(decodingStatus());
    const StageFile wav(outputPath());
    if (needsDecoder()) {
        if (!decodeTo(wav.path()) && !cancelled())
            noteProblem(u"its decoder failed"_s);
        // The words of the encoder would only hide the decoder's.
        if (QFileInfo(wav.path()).size() == 0 && !cancelled()) {
            failWith(problemLine(u"its decoder made no sound"_s));
            return;
        }
        checkTemporaryWav(wav.path());
    } else {
        convertToWav(fileName(), wav.path(), AudioFileReader::Precision::Rounded);
    }
    if (!error() && !cancelled())
        encode(wav.path());
}

QString LossyEncodeTask::namedAfter(const QString &input) const
{
    return nurv::outputPath(outputPath(), input, pathExtension(outputFile()));
}

void LossyEncodeTask::cleanup()
{
    dropResultsUnlessFailed();
}

} // namespace nurv
