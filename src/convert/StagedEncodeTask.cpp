// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedEncodeTask.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "originals/StageFile.h"
#include "programs/Flac.h"
#include "programs/Metaflac.h"
#include "programs/MonkeysAudio.h"
#include "programs/Shntool.h"
#include "programs/Ttaenc.h"
#include "programs/Wavpack.h"
#include "tags/FlacTagHelper.h"
#include "tags/TagLibTagsHelper.h"
#include "text/TextNumbers.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Whether the texts and numbers of a record stand in another.
bool holdsRecord(const TagsObject &written, const TagsObject &wanted)
{
    static constexpr std::array kTexts = {&TagsObject::titleText, &TagsObject::artistText,   &TagsObject::albumText,
                                          &TagsObject::genreText, &TagsObject::composerText, &TagsObject::commentText};
    static constexpr std::array kNumbers = {&TagsObject::trackText, &TagsObject::discText, &TagsObject::dateText};
    const auto numberIn = [](const TagsObject &record, const auto text) {
        return leadingInteger((record.*text)().value_or(QString()));
    };
    const auto hasText = [&](const auto text) {
        const QString value = (wanted.*text)().value_or(QString());
        return value.isEmpty() || (written.*text)() == value;
    };
    const auto hasNumber = [&](const auto text) { return numberIn(written, text) == numberIn(wanted, text); };
    return std::all_of(kTexts.begin(), kTexts.end(), hasText)
           && std::all_of(kNumbers.begin(), kNumbers.end(), hasNumber);
}

} // namespace

std::optional<ProgramStage> StagedEncodeTask::decodingToWav(const QString &made) const
{
    const QString format = formatWord(fileName());
    if (format == u"SHN")
        return shntool::shortenToWav(fileName(), made);
    if (format == u"FLAC")
        return flac::decodingToWav(fileName(), made);
    if (format == u"APE")
        return monkeysAudio::decodingToWav(fileName(), made);
    if (format == u"WV")
        return wavpack::decodingToWav(fileName(), made);
    if (format == u"TTA")
        return ttaenc::decodingToWav(fileName(), made);
    return {};
}

void StagedEncodeTask::convertToWav(const QString &source, const QString &wav, AudioFileReader::Precision precision)
{
    convertAudio(source, wav, kFormatLinearPCM, kFileWave, {}, precision);
}

ProgramStage StagedEncodeTask::withoutStatus(ProgramStage stage)
{
    stage.looksAtExitStatus = false;
    return stage;
}

NeededPrograms StagedEncodeTask::flacTagPrograms()
{
    return {{metaflac::program().name}, {}};
}

void StagedEncodeTask::encodeWav()
{
    if (isAiff(formatWord(fileName())))
        encodeThroughWav();
    else
        encodeFrom(fileName());
}

void StagedEncodeTask::encodeThroughWav()
{
    if (cancelled())
        return;
    const StageFile wav(outputPath());
    convertToWav(fileName(), wav.path());
    wav.grantUsualAccess();
    // Also after a failure, on whatever there is; the job ends in error either way.
    encodeFrom(wav.path());
}

void StagedEncodeTask::writeFlacTags(const TagsObject &tags)
{
    FlacTagHelper::writeTagsForFile(outputFile(), tags, false);
    noteLostPicture(tags.albumArtFault());
    if (holdsRecord(TagLibTagsHelper::tagsForFlacFile(outputFile()), tags))
        return;
    qCWarning(convertLog).noquote() << "Tags not copied:" << fileName() << "->" << outputFile();
    noteLostTags(u"they are not in the output"_s);
}

} // namespace nurv
