// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/DecodeCommand.h"

#include "app/PathNames.h"
#include "cli/BatchOptions.h"
#include "convert/DecodeTab.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

std::vector<OptionSpec> ownOptions()
{
    return {
        {.name = u"format"_s,
         .valueName = u"FORMAT"_s,
         .summary = u"wav (default) or aiff"_s,
         .manual = u"The output format."_s,
         .choices = {u"wav"_s, u"aiff"_s},
         .standard = u"wav"_s,
         .set = setsChoice(&DecodeTab::outputFormatMatrix)},
        {.name = u"through-errors"_s,
         .summary = u"FLAC sources: go on after errors in the stream"_s,
         .manual = u"Goes on after an error in a FLAC file."_s,
         .set = setsCheck(&DecodeTab::decodeFlacThroughErrors)},
        {.name = u"keep-foreign-metadata"_s,
         .summary = u"FLAC sources: restore the chunks that hold no audio"_s,
         .manual = u"Restores the chunks that FLAC kept."_s,
         .set = setsCheck(&DecodeTab::flacKeepForeignMetadataButton)},
    };
}

CommandSpec makeSpec()
{
    return {.name = u"decode"_s,
            .summary = u"turn lossless files back into WAV or AIFF"_s,
            .synopsis = u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s,
            .details = u"Decodes every FLAC, Shorten, WavPack, TTA, Apple Lossless and Monkey's Audio file\n"
                       "that the paths name; folders are searched with all that is in them."_s,
            .options = joined(joined(ownOptions(), outputOptions(conversionSetters())),
                              batchOptions())};
}

} // namespace

const CommandSpec &DecodeCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

bool DecodeCommand::takes(const QString &path) const
{
    // The tab lists files without an extension too, but makes no job for them.
    static const QStringList words{u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"M4A"_s, u"APE"_s};
    return words.contains(formatWord(path));
}

std::unique_ptr<BaseTab> DecodeCommand::makeTab(NURVController &controller) const
{
    return std::make_unique<DecodeTab>(controller);
}

} // namespace nurv
