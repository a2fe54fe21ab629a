// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/EncodeCommand.h"

#include "app/PathNames.h"
#include "cli/BatchOptions.h"
#include "convert/EncodeTab.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kDefaultFlacLevel = 5;

void setLevel(BaseTab &tab, const std::optional<QString> &value)
{
    auto &encode = static_cast<EncodeTab &>(tab);
    encode.flacSlider.setIntegerValue(kDefaultFlacLevel);
    if (value)
        (encode.outputFormat() == u"APE" ? encode.apeSlider : encode.flacSlider).setIntegerValue(value->toInt());
}

std::vector<OptionSpec> ownOptions()
{
    const QStringList flac{u"flac"_s};
    return {
        {.name = u"format"_s,
         .valueName = u"FORMAT"_s,
         .summary = u"flac (default), shn, wv, ape, tta or m4a"_s,
         .manual = u"The output format."_s,
         .choices = {u"shn"_s, u"wv"_s, u"flac"_s, u"tta"_s, u"ape"_s, u"m4a"_s},
         .standard = u"flac"_s,
         .set = setsChoice(&EncodeTab::outputFormatMatrix)},
        {.name = u"level"_s,
         .valueName = u"N"_s,
         .summary = u"flac: 0 to 8 (default 5); ape: 1000, 2000, ... 5000 (default 2000)"_s,
         .manual = u"Compression level: 0 to 8 for FLAC; 1000, 2000, 3000, 4000 or 5000 for Monkey's Audio. WavPack and "
                   "Apple Lossless sources become FLAC with flac's own level, 5, and a note says so."_s,
         .numbers = {{.least = 0, .most = 8, .formats = flac},
                     {.least = 1000, .most = 5000, .step = 1000, .formats = {u"ape"_s}}},
         .formats = {u"flac"_s, u"ape"_s},
         .set = setLevel},
        {.name = u"mode"_s,
         .valueName = u"MODE"_s,
         .summary = u"wv: fast (default) or high"_s,
         .manual = u"WavPack mode."_s,
         .choices = {u"fast"_s, u"high"_s},
         .standard = u"fast"_s,
         .formats = {u"wv"_s},
         .set = setsChoice(&EncodeTab::wavepackFormatMatrix)},
        {.name = u"lax"_s,
         .summary = u"flac: allow streams outside the subset; the level is then not used"_s,
         .manual = u"Lets FLAC leave its streamable subset; no level is passed then, and for Shorten and Monkey's Audio "
                   "sources no --verify either. WavPack and Apple Lossless sources become FLAC without it, and a note says "
                   "so."_s,
         .formats = flac,
         .set = setsCheck(&EncodeTab::flacLaxButton)},
        {.name = u"verify"_s,
         .summary = u"flac: decode while encoding and compare"_s,
         .manual = u"FLAC decodes what it writes and compares it with the source."_s,
         .formats = flac,
         .set = setsCheck(&EncodeTab::flacVerifyButton)},
        {.name = u"keep-foreign-metadata"_s,
         .summary = u"flac: keep the chunks of WAV and AIFF files that hold no audio"_s,
         .manual = u"Keeps the chunks of a WAV or AIFF file that are not audio inside the FLAC file."_s,
         .formats = flac,
         .set = setsCheck(&EncodeTab::flacKeepForeignMetadataButton)},
        {.name = u"ffp"_s,
         .summary = u"flac: write a fingerprint list into every output folder afterwards"_s,
         .manual = u"Writes a list of FLAC fingerprints per output folder after the batch."_s,
         .formats = flac,
         .set = setsCheck(&EncodeTab::generateFFPButton)},
        {.name = u"md5"_s,
         .summary = u"shn: write an MD5 list of the outputs afterwards"_s,
         .manual = u"Writes an MD5 list of the Shorten files after the batch."_s,
         .formats = {u"shn"_s},
         .set = setsCheck(&EncodeTab::generateMD5Button)},
    };
}

CommandSpec makeSpec()
{
    return {.name = u"encode"_s,
            .summary = u"turn files into FLAC, Shorten, WavPack, Monkey's Audio, TTA or Apple Lossless"_s,
            .synopsis = u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s,
            .details = u"Encodes every WAV, AIFF, FLAC, Shorten, WavPack, TTA, Monkey's Audio and Apple\n"
                       "Lossless file that the paths name; folders are searched with all that is in them."_s,
            .options = joined(joined(ownOptions(), outputOptions(conversionSetters())),
                              batchOptions())};
}

} // namespace

const CommandSpec &EncodeCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

bool EncodeCommand::takes(const QString &) const
{
    return true;
}

std::unique_ptr<BaseTab> EncodeCommand::makeTab(NURVController &controller) const
{
    return std::make_unique<EncodeTab>(controller);
}

QStringList EncodeCommand::optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &files) const
{
    QStringList notes;
    if (arguments.value(u"format"_s) != u"flac")
        return notes;
    if (arguments.has(u"level"_s) && arguments.has(u"lax"_s))
        notes.append(u"--level has no effect together with --lax: flac's own level counts"_s);
    // For these flac is told nothing but whether to verify; for those that shntool hands to it, lax replaces all else.
    const auto countOf = [&files](const QStringList &words) {
        return std::count_if(files.begin(), files.end(),
                             [&words](const QString &file) { return words.contains(formatWord(file)); });
    };
    const auto untold = countOf({u"WV"_s, u"M4A"_s});
    for (const QString &option : {u"level"_s, u"lax"_s}) {
        if (arguments.has(option) && untold > 0)
            notes.append(u"--%1 has no effect on %2 WavPack or Apple Lossless %3: flac's own level counts"_s.arg(option)
                             .arg(untold)
                             .arg(untold == 1 ? u"source"_s : u"sources"_s));
    }
    const auto handed = countOf({u"SHN"_s, u"APE"_s});
    if (arguments.has(u"lax"_s) && arguments.has(u"verify"_s) && handed > 0)
        notes.append(u"--verify has no effect on %1 Shorten or Monkey's Audio %2 together with --lax"_s.arg(handed).arg(
            handed == 1 ? u"source"_s : u"sources"_s));
    return notes;
}

} // namespace nurv
