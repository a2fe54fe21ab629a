// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/DecodeCommand.h"

#include "app/PathNames.h"
#include "convert/DecodeTab.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QStringList &formats()
{
    static const QStringList list{u"wav"_s, u"aiff"_s};
    return list;
}

QString formatOf(const ParsedArguments &arguments)
{
    return chosenFormat(arguments, formats(), u"wav"_s);
}

CommandSpec makeSpec()
{
    CommandSpec spec;
    spec.name = u"decode"_s;
    spec.summary = u"turn lossless files back into WAV or AIFF"_s;
    spec.synopsis = u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s;
    spec.details = u"Decodes every FLAC, Shorten, WavPack, TTA, Apple Lossless and Monkey's Audio file\n"
                   "that the paths name; folders are searched with all that is in them."_s;
    spec.options = {
        {u"format"_s, u"FORMAT"_s, u"wav (default) or aiff"_s},
        {u"through-errors"_s, {}, u"FLAC sources: go on after errors in the stream"_s},
        {u"keep-foreign-metadata"_s, {}, u"FLAC sources: restore the chunks that hold no audio"_s},
    };
    for (const OptionSpec &option : commonBatchOptions())
        spec.options.push_back(option);
    return spec;
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

void DecodeCommand::check(const ParsedArguments &arguments) const
{
    static_cast<void>(formatOf(arguments));
}

std::unique_ptr<BaseTab> DecodeCommand::makeTab(NURVController &controller, const ParsedArguments &arguments) const
{
    auto tab = std::make_unique<DecodeTab>(controller);
    tab->outputFormatMatrix.selectTitle(formatOf(arguments));
    tab->decodeFlacThroughErrors.setOn(arguments.has(u"through-errors"_s));
    tab->flacKeepForeignMetadataButton.setOn(arguments.has(u"keep-foreign-metadata"_s));
    tab->sourceDecodeButton.setOn(arguments.has(u"beside-source"_s));
    tab->deleteOriginalsButton.setOn(arguments.has(u"delete-originals"_s));
    setOriginals(tab->originals, arguments);
    return tab;
}

} // namespace nurv
