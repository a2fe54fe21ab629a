// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchCommand.h"

using namespace Qt::StringLiterals;

namespace nurv {

std::vector<OptionSpec> commonBatchOptions()
{
    return {
        {u"output-dir"_s, u"DIR"_s, u"write the outputs into this folder, which must exist"_s},
        {u"beside-source"_s, {}, u"write each output into the folder of its source"_s},
        {u"delete-originals"_s, {}, u"remove each source after its job has succeeded; asks first"_s},
        {u"jobs"_s, u"N"_s, u"run up to N jobs at once (default: the setting of the preferences)"_s},
        {u"yes"_s, {}, u"answer every question with \"Yes\""_s},
        {u"no"_s, {}, u"answer every question with \"No\""_s},
        {u"json"_s, {}, u"print one JSON object per finished job and one for the batch"_s},
        {u"quiet"_s, {}, u"no progress, no lines about finished jobs and skipped files"_s},
        {u"version"_s, {}, u"print the version and end"_s},
        {u"help"_s, {}, u"print this text and end"_s},
    };
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
