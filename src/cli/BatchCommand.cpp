// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchCommand.h"

#include "originals/OriginalsControls.h"

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

std::vector<OptionSpec> commonBatchOptions()
{
    return {
        {u"output-dir"_s, u"DIR"_s, u"write the outputs into this folder, which must exist"_s},
        {u"beside-source"_s, {}, u"write each output into the folder of its source"_s},
        {u"keep-folders"_s, {}, u"make the folders of the sources again below the output folder"_s},
        {u"overwrite"_s, {}, u"replace outputs that exist; without it they stay and their jobs fail"_s},
        {u"skip-existing"_s, {}, u"pass over sources whose outputs exist, without an error"_s},
        {u"delete-originals"_s, {}, u"remove each source whose output was proven to hold the same; asks first"_s},
        {u"no-proof"_s, {}, u"with --delete-originals: decode and compare nothing before that"_s},
        {u"drop-metadata"_s, {}, u"with --delete-originals: also lose what the output has no place for"_s},
        {u"jobs"_s, u"N"_s, u"run up to N jobs at once (default: the setting of the preferences)"_s},
        {u"yes"_s, {}, u"answer every question with \"Yes\""_s},
        {u"no"_s, {}, u"answer every question with \"No\""_s},
        {u"json"_s, {}, u"print one JSON object per finished job and one for the batch"_s},
        {u"quiet"_s, {}, u"problems only: no progress, no lines about finished jobs and skipped files"_s},
        {u"verbose"_s, {}, u"with each problem all that the programs wrote about it"_s},
        {u"version"_s, {}, u"print the version and end"_s},
        {u"help"_s, {}, u"print this text and end"_s},
    };
}

void checkOptionPairs(const ParsedArguments &arguments)
{
    using Pair = std::pair<QString, QString>;
    static const std::array excluding{
        Pair{u"output-dir"_s, u"beside-source"_s},  Pair{u"keep-folders"_s, u"beside-source"_s},
        Pair{u"overwrite"_s, u"skip-existing"_s},   Pair{u"quiet"_s, u"verbose"_s},
        Pair{u"yes"_s, u"no"_s},                    Pair{u"no"_s, u"delete-originals"_s},
        Pair{u"no"_s, u"overwrite"_s},
    };
    for (const auto &[one, other] : excluding) {
        if (arguments.has(one) && arguments.has(other))
            throw UsageError(u"--%1 and --%2 cannot both be given"_s.arg(one, other));
    }
    for (const QString &option : {u"no-proof"_s, u"drop-metadata"_s}) {
        if (arguments.has(option) && !arguments.has(u"delete-originals"_s))
            throw UsageError(u"--%1 goes with --delete-originals only"_s.arg(option));
    }
}

void setOriginals(OriginalsControls &originals, const ParsedArguments &arguments)
{
    originals.proveButton.setOn(!arguments.has(u"no-proof"_s));
    originals.dropMetadataButton.setOn(arguments.has(u"drop-metadata"_s));
    originals.keepFoldersButton.setOn(arguments.has(u"keep-folders"_s));
    originals.existingOutputs = ExistingOutputs::Refuse;
    if (arguments.has(u"overwrite"_s))
        originals.existingOutputs = ExistingOutputs::Replace;
    else if (arguments.has(u"skip-existing"_s))
        originals.existingOutputs = ExistingOutputs::Skip;
}

void requireFormat(const ParsedArguments &arguments, const QString &option, const QStringList &formats,
                   const QString &format)
{
    if (arguments.has(option) && !formats.contains(format)) {
        throw UsageError(
            u"--%1 goes with --format %2 only, not with %3"_s.arg(option, formats.join(u" or "_s), format));
    }
}

QString chosenFormat(const ParsedArguments &arguments, const QStringList &formats, const QString &standard)
{
    if (!arguments.has(u"format"_s))
        return standard;
    const QString format = arguments.value(u"format"_s).toLower();
    if (!formats.contains(format)) {
        throw UsageError(
            u"--format takes one of %1, not \"%2\""_s.arg(formats.join(u", "_s), arguments.value(u"format"_s)));
    }
    return format;
}

} // namespace nurv
