// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/LossyCommand.h"

#include "cli/BatchOptions.h"
#include "lossy/LossyTab.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kDefaultBitRate = 160;
constexpr int kDefaultMp3Quality = 3;
constexpr int kDefaultAacQuality = 88;

LossyTab &lossy(BaseTab &tab)
{
    return static_cast<LossyTab &>(tab);
}

void setEncoder(BaseTab &tab, const std::optional<QString> &value)
{
    lossy(tab).outputFormatMatrix.selectTitle(value == u"mp3" ? u"LAME MP3"_s : value.value_or(QString()));
}

void setMode(BaseTab &tab, const std::optional<QString> &value)
{
    const QString title = value == u"cvbr" ? u"VBR Constrained"_s : value.value_or(QString());
    for (ChoiceControl *const matrix : {&lossy(tab).mp3Matrix, &lossy(tab).aacMatrix, &lossy(tab).opusMatrix})
        matrix->selectTitle(title);
}

void setBitRate(BaseTab &tab, const std::optional<QString> &value)
{
    lossy(tab).setComboLevel(value ? value->toInt() : kDefaultBitRate);
}

void setQuality(BaseTab &tab, const std::optional<QString> &value)
{
    const bool isAac = lossy(tab).outputFormatMatrix.selectedTitle() == u"AAC";
    lossy(tab).setSliderLevel(value && !isAac ? value->toInt() : kDefaultMp3Quality);
    lossy(tab).setStepperLevel(value && isAac ? value->toInt() : kDefaultAacQuality);
}

std::vector<OptionSpec> ownOptions()
{
    const QStringList mp3{u"mp3"_s};
    const QStringList aac{u"aac"_s};
    const QStringList opus{u"opus"_s};
    return {
        {.name = u"encoder"_s,
         .valueName = u"ENCODER"_s,
         .summary = u"mp3 (default), aac or opus"_s,
         .manual = u"What encodes: lame to MP3, the built-in encoder to AAC in an .m4a file, opusenc to Opus."_s,
         .choices = {u"mp3"_s, u"aac"_s, u"opus"_s},
         .standard = u"mp3"_s,
         .set = setEncoder},
        {.name = u"mode"_s,
         .valueName = u"MODE"_s,
         .summary = u"vbr (default) or cbr; aac: abr, cvbr too; opus: cvbr too"_s,
         .manual = u"How the bit rate is spent: *vbr* by quality, *cbr* constant, *abr* the average over the file, *cvbr* "
                   "variable around the average."_s,
         .choices = {u"vbr"_s, u"cbr"_s, u"abr"_s, u"cvbr"_s},
         .standard = u"vbr"_s,
         .choiceFormats = {{u"abr"_s, aac}, {u"cvbr"_s, aac + opus}},
         .set = setMode},
        {.name = u"bitrate"_s,
         .valueName = u"K"_s,
         .summary = u"kbit/s (default 160); of opus in every mode, else not with --mode vbr"_s,
         .manual = u"Kilobits per second. MP3 and AAC with --mode vbr go by --quality instead, and a note says so."_s,
         .numbers = {{.least = 8, .most = 320, .formats = mp3}, {.least = 6, .most = 2048, .formats = aac + opus}},
         .set = setBitRate},
        {.name = u"quality"_s,
         .valueName = u"N"_s,
         .summary = u"with --mode vbr; mp3: 0 best to 9 (default 3); aac: 0 to 127 best (default 88)"_s,
         .manual = u"With --mode vbr: for MP3 lame's quality, 0 is the best and 9 the smallest; for AAC 0 is the smallest and "
                   "127 the best."_s,
         .numbers = {{.least = 0, .most = 9, .formats = mp3}, {.least = 0, .most = 127, .formats = aac}},
         .formats = mp3 + aac,
         .set = setQuality},
        {.name = u"frame-size"_s,
         .valueName = u"MS"_s,
         .summary = u"opus: 2.5, 5, 10, 20 (default), 40 or 60 milliseconds"_s,
         .manual = u"The length of an Opus frame in milliseconds."_s,
         .choices = {u"2.5"_s, u"5"_s, u"10"_s, u"20"_s, u"40"_s, u"60"_s},
         .standard = u"20"_s,
         .formats = opus,
         .set = setsChoice(&LossyTab::opusFrameSizeCombo)},
    };
}

CommandSpec makeSpec()
{
    return {.name = u"lossy"_s,
            .summary = u"turn files into MP3, AAC or Opus"_s,
            .synopsis = u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s,
            .details = u"Encodes every WAV, AIFF, FLAC, Shorten, WavPack, TTA and Apple Lossless file that\n"
                       "the paths name; folders are searched with all that is in them."_s,
            .selector = u"encoder"_s,
            .options = joined(joined(ownOptions(), outputOptions(conversionSetters())), batchOptions())};
}

} // namespace

const CommandSpec &LossyCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

bool LossyCommand::takes(const QString &) const
{
    return true;
}

std::unique_ptr<BaseTab> LossyCommand::makeTab(NURVController &controller) const
{
    return std::make_unique<LossyTab>(controller);
}

QStringList LossyCommand::optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &) const
{
    const bool isVbr = arguments.value(u"mode"_s) == u"vbr";
    const bool isOpus = arguments.value(u"encoder"_s) == u"opus";
    if (arguments.has(u"bitrate"_s) && isVbr && !isOpus)
        return {u"--bitrate has no effect with --mode vbr: --quality counts"_s};
    if (arguments.has(u"quality"_s) && !isVbr)
        return {u"--quality has no effect with --mode %1: --bitrate counts"_s.arg(arguments.value(u"mode"_s))};
    return {};
}

} // namespace nurv
