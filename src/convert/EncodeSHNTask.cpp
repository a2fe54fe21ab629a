// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeSHNTask.h"

#include "app/PathNames.h"
#include "convert/ConversionArguments.h"
#include "samples/SoundLength.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

EncodeSHNTask::EncodeSHNTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                             std::shared_ptr<NURVTaskResults> results)
    : ConversionTask(queue, launchPath, arguments, arguments.value(conversionArguments::kShntoolSource))
{
    setResults(std::move(results));
    static const QStringList undecoded{u"WAV"_s, u"AIFF"_s, u"AIF"_s};
    if (!undecoded.contains(formatWord(fileName())))
        setDecoderUnwatched();
}

QString EncodeSHNTask::outputFile() const
{
    return outputPath(arguments().value(conversionArguments::kShntoolSource - 1), fileName(), u"shn"_s);
}

QString EncodeSHNTask::intermediateFile() const
{
    const QString made = conversionArguments::shntoolOutput(fileName(), arguments().value(conversionArguments::kShntoolSource - 1), u"shn"_s);
    return made == outputFile() ? QString() : made;
}

std::optional<QString> EncodeSHNTask::refusal() const
{
    constexpr int kMostBits = 16;
    const std::optional<SoundLength> sound = soundLength(fileName());
    if (!sound || sound->bitsPerSample <= kMostBits)
        return std::nullopt;
    return u"Shorten holds samples of 8 or 16 bits, not of %1"_s.arg(sound->bitsPerSample);
}

toolOutput::ChunkReport EncodeSHNTask::parseOutput(const QString &chunk) const
{
    return toolOutput::parseShortenEncoding(chunk);
}

void EncodeSHNTask::cleanup()
{
    deleteSourceIfDone();
}

void EncodeSHNTask::finalCleanup()
{
    dropResultsUnlessFailed();
    ConversionTask::finalCleanup();
}

} // namespace nurv
