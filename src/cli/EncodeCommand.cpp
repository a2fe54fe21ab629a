// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/EncodeCommand.h"

#include "app/PathNames.h"
#include "convert/EncodeTab.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QStringList &formats()
{
    static const QStringList list{u"shn"_s, u"wv"_s, u"flac"_s, u"tta"_s, u"ape"_s, u"m4a"_s};
    return list;
}

constexpr int kDefaultFlacLevel = 5;
constexpr int kFastest = 1000;
constexpr int kStrongest = 5000;

QString formatOf(const ParsedArguments &arguments)
{
    return chosenFormat(arguments, formats(), u"flac"_s);
}

void checkLevel(const ParsedArguments &arguments, const QString &format)
{
    requireFormat(arguments, u"level"_s, {u"flac"_s, u"ape"_s}, format);
    if (!arguments.has(u"level"_s))
        return;
    if (format == u"flac") {
        static_cast<void>(arguments.number(u"level"_s, 0, 8));
    } else if (arguments.number(u"level"_s, kFastest, kStrongest) % kFastest != 0) {
        throw UsageError(u"--level takes 1000, 2000, 3000, 4000 or 5000 with --format ape, not \"%1\""_s.arg(
            arguments.value(u"level"_s)));
    }
}

CommandSpec makeSpec()
{
    CommandSpec spec;
    spec.name = u"encode"_s;
    spec.summary = u"turn files into FLAC, Shorten, WavPack, Monkey's Audio, TTA or Apple Lossless"_s;
    spec.synopsis = u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s;
    spec.details = u"Encodes every WAV, AIFF, FLAC, Shorten, WavPack, TTA, Monkey's Audio and Apple\n"
                   "Lossless file that the paths name; folders are searched with all that is in them."_s;
    spec.options = {
        {u"format"_s, u"FORMAT"_s, u"flac (default), shn, wv, ape, tta or m4a"_s},
        {u"level"_s, u"N"_s, u"flac: 0 to 8 (default 5); ape: 1000, 2000, ... 5000 (default 2000)"_s},
        {u"mode"_s, u"MODE"_s, u"wv: fast (default) or high"_s},
        {u"lax"_s, {}, u"flac: allow streams outside the subset; the level is then not used"_s},
        {u"verify"_s, {}, u"flac: decode while encoding and compare"_s},
        {u"keep-foreign-metadata"_s, {}, u"flac: keep the chunks of WAV and AIFF files that hold no audio"_s},
        {u"ffp"_s, {}, u"flac: write a fingerprint list into every output folder afterwards"_s},
        {u"md5"_s, {}, u"shn: write an MD5 list of the outputs afterwards"_s},
    };
    for (const OptionSpec &option : commonBatchOptions())
        spec.options.push_back(option);
    return spec;
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

void EncodeCommand::check(const ParsedArguments &arguments) const
{
    const QString format = formatOf(arguments);
    for (const QString &option : {u"lax"_s, u"verify"_s, u"keep-foreign-metadata"_s, u"ffp"_s})
        requireFormat(arguments, option, {u"flac"_s}, format);
    requireFormat(arguments, u"md5"_s, {u"shn"_s}, format);
    requireFormat(arguments, u"mode"_s, {u"wv"_s}, format);
    checkLevel(arguments, format);
    const QString mode = arguments.value(u"mode"_s);
    if (arguments.has(u"mode"_s) && mode != u"fast" && mode != u"high")
        throw UsageError(u"--mode takes fast or high, not \"%1\""_s.arg(mode));
}

std::unique_ptr<BaseTab> EncodeCommand::makeTab(NURVController &controller, const ParsedArguments &arguments) const
{
    const QString format = formatOf(arguments);
    auto tab = std::make_unique<EncodeTab>(controller);
    tab->outputFormatMatrix.selectTitle(format);
    tab->displayRelevantOptions();
    tab->sourceEncodeButton.setOn(arguments.has(u"beside-source"_s));
    tab->deleteOriginalsButton.setOn(arguments.has(u"delete-originals"_s));
    setOriginals(tab->originals, arguments);
    tab->generateMD5Button.setOn(arguments.has(u"md5"_s));
    tab->generateFFPButton.setOn(arguments.has(u"ffp"_s));
    tab->flacVerifyButton.setOn(arguments.has(u"verify"_s));
    tab->flacLaxButton.setOn(arguments.has(u"lax"_s));
    tab->flacKeepForeignMetadataButton.setOn(arguments.has(u"keep-foreign-metadata"_s));
    tab->wavepackFormatMatrix.selectTitle(arguments.has(u"mode"_s) ? arguments.value(u"mode"_s) : u"fast"_s);
    tab->flacSlider.setIntegerValue(kDefaultFlacLevel);
    if (arguments.has(u"level"_s)) {
        const int level = arguments.value(u"level"_s).toInt();
        (format == u"ape" ? tab->apeSlider : tab->flacSlider).setIntegerValue(level);
    }
    return tab;
}

QStringList EncodeCommand::optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &files) const
{
    QStringList notes;
    if (formatOf(arguments) != u"flac")
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
