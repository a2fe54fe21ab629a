// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchOptions.h"

#include "convert/ConversionTab.h"
#include "engine/NURVTaskQueue.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// A check box of the tab's `originals`: on when the option is given, or only then off.
ControlSetter setsOriginals(CheckControl OriginalsControls::*control, bool isOnWhenGiven = true)
{
    return [control, isOnWhenGiven](BaseTab &tab, const std::optional<QString> &value) {
        (static_cast<ConversionTab &>(tab).originals.*control).setOn(value.has_value() == isOnWhenGiven);
    };
}

} // namespace

OutputSetters conversionSetters()
{
    return {.besideSource = setsCheck(&ConversionTab::besideSourceButton),
            .keepFolders = setsOriginals(&OriginalsControls::keepFoldersButton),
            .overwrite =
                [](BaseTab &tab, const std::optional<QString> &value) {
                    static_cast<ConversionTab &>(tab).originals.existingOutputs =
                        value ? ExistingOutputs::Replace : ExistingOutputs::Refuse;
                },
            .skipExisting =
                [](BaseTab &tab, const std::optional<QString> &value) {
                    if (value)
                        static_cast<ConversionTab &>(tab).originals.existingOutputs = ExistingOutputs::Skip;
                },
            .deleteOriginals = setsCheck(&ConversionTab::deleteOriginalsButton),
            .noProof = setsOriginals(&OriginalsControls::proveButton, false),
            .dropMetadata = setsOriginals(&OriginalsControls::dropMetadataButton)};
}

std::vector<OptionSpec> reportOptionsWithoutJobs(const QString &json)
{
    return joined(joined({{.name = u"json"_s, .summary = json},
                          {.name = u"quiet"_s, .summary = u"problems only: no notes, no closing line"_s},
                          {.name = u"yes"_s, .summary = u"accepted as everywhere; there are no questions"_s},
                          {.name = u"no"_s, .summary = u"accepted as everywhere; there are no questions"_s}},
                         unusedOptions()),
                  standingOptions());
}

std::vector<OptionSpec> joined(std::vector<OptionSpec> list, const std::vector<OptionSpec> &more)
{
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

std::vector<OptionSpec> optionsNamed(std::vector<OptionSpec> options, const QStringList &names)
{
    std::erase_if(options, [&names](const OptionSpec &option) { return !names.contains(option.name); });
    for (OptionSpec &option : options)
        option.excluded.removeIf([&names](const QString &other) { return !names.contains(other); });
    return options;
}

std::vector<OptionSpec> outputOptions(const OutputSetters &setters)
{
    return {
        {.name = u"output-dir"_s,
         .valueName = u"DIR"_s,
         .summary = u"write the outputs into this folder, which must exist"_s,
         .manual = u"The folder that the results go into. It must exist. Where no option says where they go, the folder is asked "
                   "for on the terminal."_s,
         .isFolder = true,
         .excluded = {u"beside-source"_s}},
        {.name = u"beside-source"_s,
         .summary = u"write each output into the folder of its source"_s,
         .manual = u"Each result goes into the folder of its source."_s,
         .set = setters.besideSource},
        {.name = u"keep-folders"_s,
         .summary = u"make the folders of the sources again below the output folder"_s,
         .manual = u"Makes the folders of the sources again below the folder of --output-dir, from the given folder's own "
                   "name on: of _shows/disc1/a.wav_ the result is _disc1/a.flac_ when _shows/disc1_ was given, and "
                   "_shows/disc1/a.flac_ when _shows_ was. Of a folder that is called \".\" or \"..\" only the part below "
                   "it counts. A file that is named itself goes right into the output folder. Without this option all "
                   "results do, and of files with the same name only the first is converted."_s,
         .excluded = {u"beside-source"_s},
         .set = setters.keepFolders},
        {.name = u"overwrite"_s,
         .summary = u"replace outputs that exist; without it they stay and their jobs fail"_s,
         .manual = u"Replaces outputs that exist. See *EXISTING OUTPUTS*."_s,
         .excluded = {u"skip-existing"_s},
         .set = setters.overwrite},
        {.name = u"skip-existing"_s,
         .summary = u"pass over sources whose outputs exist, without an error"_s,
         .manual = u"Passes over sources whose outputs exist, which is no error, and tells how many there were. With this "
                   "option a batch that was interrupted can be run again. An output that is known to hold less than its "
                   "source is no such output: it stays, and the job fails by name."_s,
         .set = setters.skipExisting},
        {.name = u"delete-originals"_s,
         .summary = u"remove each source whose output was proven; asks first"_s,
         .manual = u"Removes each source after its job succeeded: to the trash or for good, as the preferences say. Asks "
                   "first. Source and output are decoded again before that, to the source's real end, and compared: "
                   "sample by sample, or by the length where the output is lossy. A source stays, and that is told, when "
                   "they differ or one of them cannot be decoded to its end; when the output has no place for all of its "
                   "tags, pictures and other chunks; when its job failed, was cancelled or reported an error in the sound; "
                   "when another source has the same output; and when it is the output itself. Of *fix* all sources go or all "
                   "stay: the joined outputs are compared with the joined sources."_s,
         .set = setters.deleteOriginals},
        {.name = u"no-proof"_s,
         .summary = u"with --delete-originals: decode and compare nothing before that"_s,
         .manual = u"With --delete-originals: decodes and compares nothing before the deletion. What the headers, sizes and "
                   "programs tell still counts."_s,
         .partners = {u"delete-originals"_s},
         .set = setters.noProof},
        {.name = u"drop-metadata"_s,
         .summary = u"with --delete-originals: also lose what the output has no place for"_s,
         .manual = u"With --delete-originals: also removes sources with tags, pictures or chunks for which their outputs "
                   "have no place."_s,
         .partners = {u"delete-originals"_s},
         .set = setters.dropMetadata},
    };
}

std::vector<OptionSpec> batchOptions()
{
    return joined(
        {
            {.name = u"jobs"_s,
             .valueName = u"N"_s,
             .summary = u"run up to N jobs at once (default: the setting of the preferences)"_s,
             .manual = u"How many jobs run at a time, 1 to 256. Without it the number of the preferences counts."_s,
             .numbers = {{.least = 1, .most = NURVTaskQueue::kMostThreads}}},
            {.name = u"yes"_s,
             .summary = u"answer every question with \"Yes\""_s,
             .manual = u"Answers every question with \"Yes\". See *QUESTIONS*."_s,
             .excluded = {u"no"_s}},
            {.name = u"no"_s,
             .summary = u"answer every question with \"No\""_s,
             .manual = u"Answers every question with \"No\". Cannot be combined with --yes, --overwrite or "
                       "--delete-originals."_s,
             .excluded = {u"delete-originals"_s, u"overwrite"_s}},
            {.name = u"json"_s,
             .summary = u"print one JSON object per finished job and one for the batch"_s,
             .manual = u"One JSON object per finished job and one for the batch, one a line, on standard output. See "
                       "*JSON*."_s},
            {.name = u"quiet"_s,
             .summary = u"problems only: no progress, no lines about finished jobs and skipped files"_s,
             .manual = u"No progress, no lines about finished jobs and skipped files, no closing line. Problems and "
                       "questions still come."_s,
             .excluded = {u"verbose"_s}},
            {.name = u"verbose"_s,
             .summary = u"with each problem all that the programs wrote about it"_s,
             .manual = u"After each problem all that the programs wrote about that file. Cannot be combined with --quiet."_s},
        },
        standingOptions());
}

std::vector<OptionSpec> unusedOptions()
{
    return {{.name = u"verbose"_s, .summary = u"accepted as everywhere; everything is told already"_s},
            {.name = u"jobs"_s, .valueName = u"N"_s, .summary = u"accepted as everywhere; there are no jobs"_s}};
}

std::vector<OptionSpec> standingOptions()
{
    return {
        {.name = u"version"_s, .summary = u"print the version and end"_s, .manual = u"Prints the version."_s},
        {.name = u"help"_s, .summary = u"print this text and end"_s, .manual = u"Prints a summary of the options."_s},
    };
}

} // namespace nurv
