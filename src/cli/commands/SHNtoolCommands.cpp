// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/SHNtoolCommands.h"

#include "app/TrackNames.h"
#include "app/TrackNamesFile.h"
#include "cli/BatchCommand.h"
#include "cli/BatchOptions.h"
#include "shntool/SHNtoolTab.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

SHNtoolTab &shntoolTab(BaseTab &tab)
{
    return static_cast<SHNtoolTab &>(tab);
}

ControlSetter setsOriginals(CheckControl OriginalsControls::*control, bool isOnWhenGiven)
{
    return [control, isOnWhenGiven](BaseTab &tab, const std::optional<QString> &value) {
        (shntoolTab(tab).originals.*control).setOn(value.has_value() == isOnWhenGiven);
    };
}

void setTrackNames(BaseTab &tab, const std::optional<QString> &path)
{
    if (!path)
        return;
    const TrackNamesFile file = readTrackNamesFile(QFileInfo(*path).absoluteFilePath());
    if (!file.names) {
        const bool isSentence = file.problem.endsWith(u'.');
        throw UsageError(u"--names %1: %2"_s.arg(*path, isSentence ? file.problem.chopped(1) : file.problem));
    }
    shntoolTab(tab).trackNamesEntered(trackNamesIn(*file.names));
}

/// One of shntool's modes, on all files that the paths name.
class SHNtoolCommand final : public BatchCommand {
public:
    SHNtoolCommand(QString mode, CommandSpec spec) : m_mode(std::move(mode)), m_spec(std::move(spec)) {}

    [[nodiscard]] const CommandSpec &spec() const override { return m_spec; }

protected:
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override
    {
        auto tab = std::make_unique<SHNtoolTab>(controller);
        tab->shntoolCommandMatrix.selectTitle(m_mode);
        // On a terminal one asks for a preview, and is not asked about it.
        tab->previewButton.setOn(false);
        return tab;
    }
    [[nodiscard]] bool takes(const QString &) const override { return true; }
    void checkFiles(const QStringList &files) const override
    {
        if (m_mode == u"cmp" && files.size() != 2)
            throw UsageError(u"cmp compares two files, and %1"_s.arg(
                files.size() == 1 ? u"this is one"_s : u"these are %1"_s.arg(files.size())));
        if (m_mode == u"split" && files.size() > 1)
            throw UsageError(u"split takes one file, and these are %1"_s.arg(files.size()));
    }
    [[nodiscard]] bool needsAllFiles(const ParsedArguments &) const override
    {
        return m_mode == u"join" || m_mode == u"cue" || m_mode == u"cmp";
    }

private:
    QString m_mode;
    CommandSpec m_spec;
};

OptionSpec formatOption()
{
    return {.name = u"format"_s,
            .valueName = u"FORMAT"_s,
            .summary = u"flac (default), shn, aiff or wav"_s,
            .manual = u"The output format."_s,
            .choices = {u"shn"_s, u"flac"_s, u"aiff"_s, u"wav"_s},
            .standard = u"flac"_s,
            .set = setsChoice(&SHNtoolTab::outputFormatMatrix)};
}

OptionSpec previewOption()
{
    return {.name = u"preview"_s,
            .summary = u"tell what would be made, and make nothing"_s,
            .manual = u"Tells the name and the length of each output, which names are taken, points that do not fit "
                      u"and outputs that "
                      "do not end on a sector boundary, and makes nothing. Status 1 when it would fail."_s,
            .set = setsCheck(&SHNtoolTab::previewOnlyButton)};
}

/// Of the options about outputs those that an edit has.
std::vector<OptionSpec> editOptions(bool deletes)
{
    OutputSetters setters;
    setters.besideSource = setsCheck(&SHNtoolTab::sourceEncodeButton);
    setters.deleteOriginals = setsCheck(&SHNtoolTab::deleteOriginalsButton);
    setters.noProof = setsOriginals(&OriginalsControls::proveButton, false);
    setters.dropMetadata = setsOriginals(&OriginalsControls::dropMetadataButton, true);
    QStringList names{u"output-dir"_s, u"beside-source"_s};
    if (deletes)
        names << u"delete-originals"_s << u"no-proof"_s << u"drop-metadata"_s;
    return joined({formatOption()}, joined(optionsNamed(outputOptions(setters), names), {previewOption()}));
}

std::vector<OptionSpec> lengthOptions()
{
    return {
        {.name = u"kind"_s,
         .valueName = u"KIND"_s,
         .summary = u"normal (default), fileset or disc"_s,
         .manual =
             u"What is reported: *normal* shntool's own table; *fileset* a set list of all files, numbered, with the "
             u"total; "
             "*disc* a set list per disc, whose number is what stands between the last \"d\" of the path and the \"t\" "
             "behind it, as in _show-d1t01.shn_. How a line looks is a setting, *shntoolNamesFormat*."_s,
         .choices = {u"normal"_s, u"fileset"_s, u"disc"_s},
         .standard = u"normal"_s,
         .set =
             [](BaseTab &tab, const std::optional<QString> &value) {
                 shntoolTab(tab).shnLenMatrix.setSelectedIndex(value == u"fileset" ? 1 : value == u"disc" ? 2 : 0);
             }},
        {.name = u"names"_s,
         .valueName = u"FILE"_s,
         .summary = u"fileset, disc: take the tracks' names from a text file"_s,
         .manual = u"A text file with a set list. Of its lines from the one numbered 1 on, those that begin with a "
                   u"number are the tracks; "
                   "numbers and times are taken off, dates are passed over."_s,
         .formats = {u"fileset"_s, u"disc"_s},
         .set = setTrackNames},
    };
}

std::unique_ptr<Command> make(const QString &mode, const QString &summary, const QString &synopsis,
                              const QString &details, const std::vector<OptionSpec> &options,
                              const QString &selector = u"format"_s)
{
    return std::make_unique<SHNtoolCommand>(mode, CommandSpec{.name = u"shntool "_s + mode,
                                                              .summary = summary,
                                                              .synopsis = synopsis,
                                                              .details = details,
                                                              .selector = selector,
                                                              .options = joined(options, batchOptions())});
}

std::unique_ptr<Command> makeEdit(const QString &mode, const QString &summary, const QString &details)
{
    return make(mode, summary, u"[OPTION]... (--output-dir DIR | --beside-source) PATH..."_s, details,
                editOptions(true));
}

std::unique_ptr<Command> makeSplit()
{
    const OptionSpec points{
        .name = u"points"_s,
        .valueName = u"FILE"_s,
        .summary = u"the cue sheet or the list of points to split at"_s,
        .manual = u"A cue sheet, whose titles become the names of the pieces, or a text file with a point on each "
                  "line: m:ss, m:ss.ff with 75 frames a second, m:ss.nnn or a number of bytes. Any encoding."_s};
    return make(u"split"_s, u"split a file at the points of a cue sheet or a list"_s,
                u"[OPTION]... --points FILE (--output-dir DIR | --beside-source) FILE"_s,
                u"Makes a file of each piece: split-track01.flac and so on, or \"01 Title.flac\" where the\n"
                "cue sheet has a title."_s,
                joined({points}, editOptions(false)));
}

std::unique_ptr<Command> makeCueSheet()
{
    const std::vector<OptionSpec> options{
        {.name = u"output"_s,
         .valueName = u"FILE"_s,
         .summary = u"write the cue sheet there"_s,
         .manual =
             u"The cue sheet to write. A file of that name is replaced, after a question unless --overwrite is given."_s},
        {.name = u"overwrite"_s,
         .summary = u"replace a cue sheet that exists"_s,
         .manual = u"Replaces a cue sheet that exists without a question."_s,
         .partners = {u"output"_s}}};
    return make(u"cue"_s, u"write the cue sheet of files that will be joined"_s, u"[OPTION]... --output FILE PATH..."_s,
                u"Writes a cue sheet that tells where each file begins once all are joined in their order."_s, options);
}

} // namespace

std::vector<std::unique_ptr<Command>> makeSHNtoolCommands()
{
    const QString paths = u"[OPTION]... PATH..."_s;
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(
        make(u"len"_s, u"tell how long files are"_s, paths,
             u"Tells the length, the size and the faults of every file that the paths name, or makes a set\n"
             "list of them."_s,
             lengthOptions(), u"kind"_s));
    commands.push_back(make(u"info"_s, u"tell all that shntool knows of files"_s, paths,
                            u"Tells format, length, sizes and faults of every file that the paths name."_s, {}));
    commands.push_back(
        make(u"cmp"_s, u"compare the sound of two files"_s, u"[OPTION]... FILE FILE"_s,
             u"Compares the samples of two files, whatever their formats. Status 0 means that they are the\n"
             "same."_s,
             {}));
    commands.push_back(
        makeEdit(u"trim"_s, u"cut silence off both ends of files"_s,
                 u"Makes NAME-trimmed.flac and so on of every file that begins or ends with silence. With\n"
                 "--delete-originals the first file stays all the same."_s));
    commands.push_back(makeEdit(u"pad"_s, u"fill files up to the end of a sector"_s,
                                u"Makes NAME-padded.flac and so on of every file that does not end on a CD sector."_s));
    commands.push_back(
        makeEdit(u"strip"_s, u"take everything but the sound out of files"_s,
                 u"Makes NAME-stripped.flac and so on of every file whose header holds more than it has to."_s));
    commands.push_back(makeSplit());
    commands.push_back(makeEdit(u"join"_s, u"make one file of several"_s,
                                u"Makes joined.flac of all files that the paths name, in the order of their names."_s));
    commands.push_back(makeCueSheet());
    return commands;
}

} // namespace nurv
