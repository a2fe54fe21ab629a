// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/FixCommand.h"

#include "cli/BatchOptions.h"
#include "fix/FixTab.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kDefaultFlacLevel = 4;

FixTab &fix(BaseTab &tab)
{
    return static_cast<FixTab &>(tab);
}

void setLevel(BaseTab &tab, const std::optional<QString> &value)
{
    fix(tab).flacLevelSlider.setIntegerValue(value ? value->toInt() : kDefaultFlacLevel);
}

void setMd5(BaseTab &tab, const std::optional<QString> &value)
{
    const int index = value == u"one" ? 1 : value == u"disc" ? 2 : 0;
    fix(tab).shnMd5Option.setSelectedIndex(index);
}

/// A check box of the tab's `originals`: on when the option is given, or only then off.
ControlSetter setsOriginals(CheckControl OriginalsControls::*control, bool isOnWhenGiven)
{
    return [control, isOnWhenGiven](BaseTab &tab, const std::optional<QString> &value) {
        (fix(tab).originals.*control).setOn(value.has_value() == isOnWhenGiven);
    };
}

/// Of the options about outputs those that a job for a whole set has.
std::vector<OptionSpec> outputOptionsOfSets()
{
    OutputSetters setters;
    setters.deleteOriginals = setsCheck(&FixTab::deleteOriginalsButton);
    setters.noProof = setsOriginals(&OriginalsControls::proveButton, false);
    setters.dropMetadata = setsOriginals(&OriginalsControls::dropMetadataButton, true);
    return optionsNamed(outputOptions(setters),
                        {u"output-dir"_s, u"delete-originals"_s, u"no-proof"_s, u"drop-metadata"_s});
}

std::vector<OptionSpec> ownOptions()
{
    const QStringList flac{u"flac"_s};
    return {
        {.name = u"format"_s,
         .valueName = u"FORMAT"_s,
         .summary = u"flac (default), shn, aiff or wav"_s,
         .manual = u"The output format. Tags are copied from FLAC and AIFF files to FLAC and AIFF."_s,
         .choices = {u"shn"_s, u"flac"_s, u"aiff"_s, u"wav"_s},
         .standard = u"flac"_s,
         .set = setsChoice(&FixTab::outputFormatMatrix)},
        {.name = u"level"_s,
         .valueName = u"N"_s,
         .summary = u"flac: 0 to 8; without effect, flac's own level counts"_s,
         .manual = u"Accepted and without effect, which a note says: shntool runs flac with flac's own level."_s,
         .numbers = {{.least = 0, .most = 8, .formats = flac}},
         .formats = flac,
         .set = setLevel},
        {.name = u"md5"_s,
         .valueName = u"LISTS"_s,
         .summary = u"shn: no MD5 list (none, default), one, or one per disc"_s,
         .manual = u"Writes MD5 lists of the fixed Shorten files into the output folder: none, one for all, or one per disc, "
                   "whose number is what stands between the last \"d\" of the path and the \"t\" behind it, as in "
                   "_show-d1t01.shn_."_s,
         .choices = {u"none"_s, u"one"_s, u"disc"_s},
         .standard = u"none"_s,
         .formats = {u"shn"_s},
         .set = setMd5},
        {.name = u"ffp"_s,
         .summary = u"flac: write a fingerprint list of the fixed files"_s,
         .manual = u"Writes a list of the fingerprints of the fixed FLAC files into the output folder."_s,
         .formats = flac,
         .set = setsCheck(&FixTab::flacFingerprintButton)},
    };
}

CommandSpec makeSpec()
{
    return {.name = u"fix"_s,
            .summary = u"move the borders between the files of a CD to borders of sectors"_s,
            .synopsis = u"[OPTION]... --output-dir DIR PATH..."_s,
            .details = u"Takes all WAV, AIFF, FLAC, Shorten, WavPack and TTA files that the paths name as\n"
                       "one set, by their names, and makes a file of each that ends on a CD sector. All sound\n"
                       "stays in its order; the last file is filled up with silence."_s,
            .options = joined(joined(ownOptions(), outputOptionsOfSets()), batchOptions())};
}

} // namespace

const CommandSpec &FixCommand::spec() const
{
    static const CommandSpec spec = makeSpec();
    return spec;
}

bool FixCommand::takes(const QString &) const
{
    return true;
}

std::unique_ptr<BaseTab> FixCommand::makeTab(NURVController &controller) const
{
    return std::make_unique<FixTab>(controller);
}

QStringList FixCommand::optionsWithoutEffect(const ParsedArguments &arguments, const QStringList &) const
{
    if (!arguments.has(u"level"_s))
        return {};
    return {u"--level has no effect: shntool runs flac with flac's own level"_s};
}

} // namespace nurv
