// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/UtilCommands.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "cli/BatchCommand.h"
#include "cli/BatchOptions.h"
#include "cli/Console.h"
#include "cli/FilesRun.h"
#include "text/PrintableText.h"
#include "util/BatchRename.h"
#include "util/UtilTab.h"

#include <QLoggingCategory>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// One of the tab's commands that make jobs.
class UtilCommand final : public BatchCommand {
public:
    /// `formatWords`: of the files that the command works on; empty: any.
    UtilCommand(QString title, QStringList formatWords, CommandSpec spec)
        : m_title(std::move(title)), m_formatWords(std::move(formatWords)), m_spec(std::move(spec))
    {
    }

    [[nodiscard]] const CommandSpec &spec() const override { return m_spec; }

protected:
    [[nodiscard]] std::unique_ptr<BaseTab> makeTab(NURVController &controller) const override
    {
        auto tab = std::make_unique<UtilTab>(controller);
        tab->setCommand(m_title);
        return tab;
    }
    [[nodiscard]] bool takes(const QString &path) const override
    {
        return m_formatWords.isEmpty() || m_formatWords.contains(formatWord(path));
    }

    /// A disc would lack a track, an album a part of its loudness.
    [[nodiscard]] bool needsAllFiles(const ParsedArguments &arguments) const override
    {
        return m_title == UtilTab::kDvdAudioDisc || (m_title == UtilTab::kReplayGain && !arguments.has(u"remove"_s));
    }

private:
    QString m_title;
    QStringList m_formatWords;
    CommandSpec m_spec;
};

OptionSpec outputFolderOption()
{
    return optionsNamed(outputOptions({}), {u"output-dir"_s}).front();
}

std::unique_ptr<Command> makeExtraction()
{
    const OptionSpec oneFile{.name = u"one-file"_s,
                             .summary = u"one file of all tracks"_s,
                             .manual = u"Makes one file, _audio.wav_, of all tracks."_s,
                             .set = setsCheck(&UtilTab::oneTrackButton)};
    return std::make_unique<UtilCommand>(
        UtilTab::kCdExtraction, QStringList(),
        CommandSpec{.name = u"util rip"_s,
                    .summary = u"copy tracks of an audio CD into WAV files"_s,
                    .synopsis = u"[OPTION]... --output-dir DIR TRACK..."_s,
                    .details = u"Copies the tracks that are named as the desktop shows them on a mounted audio CD, such as\n"
                               "/run/user/1000/gvfs/cdda:host=sr0/\"Track 1.wav\". The first run of numbers without a gap\n"
                               "counts. Makes \"01 Track.wav\" and so on, and a log."_s,
                    .options = joined({outputFolderOption(), oneFile}, batchOptions())});
}

std::unique_ptr<Command> makeDisc()
{
    return std::make_unique<UtilCommand>(
        UtilTab::kDvdAudioDisc, QStringList{u"FLAC"_s, u"WAV"_s},
        CommandSpec{.name = u"util dvda"_s,
                    .summary = u"author a DVD-Audio disc"_s,
                    .synopsis = u"[OPTION]... --output-dir DIR PATH..."_s,
                    .details = u"Makes image.iso of all WAV and FLAC files that the paths name, each a track, in the order of\n"
                               "their names. All have the same sample rate, bits and channels: 44100 to 192000 Hz, 16 or\n"
                               "24 bits, 1, 2 or 6 channels."_s,
                    .options = joined({outputFolderOption()}, batchOptions())});
}

std::unique_ptr<Command> makeReplayGain()
{
    const std::vector<OptionSpec> options{
        {.name = u"add"_s,
         .summary = u"write the tags (default)"_s,
         .manual = u"Writes the gain and the peak of each file and of all files, which count as one album, into their tags. "
                   u"This is what is done without an option, too."_s,
         .excluded = {u"remove"_s}},
        {.name = u"remove"_s,
         .summary = u"take the tags out"_s,
         .manual = u"Takes such tags out of the files."_s,
         .excluded = {u"add"_s},
         .set = [](BaseTab &tab, const std::optional<QString> &value) {
             static_cast<UtilTab &>(tab).replayGainMatrix.selectTitle(value ? u"Remove"_s : u"Add"_s);
         }}};
    return std::make_unique<UtilCommand>(
        UtilTab::kReplayGain, QStringList{u"FLAC"_s},
        CommandSpec{.name = u"util replaygain"_s,
                    .summary = u"add or remove the replay gain of FLAC files"_s,
                    .synopsis = u"[OPTION]... [--add | --remove] PATH..."_s,
                    .details = u"Takes all FLAC files that the paths name as one album; their sound stays as it is.\n"
                               "All need the same sample rate, and one or two channels."_s,
                    .options = joined(options, batchOptions())});
}

std::unique_ptr<Command> makeDeEmphasis()
{
    return std::make_unique<UtilCommand>(
        UtilTab::kDeEmphasis, QStringList{u"AIF"_s, u"AIFF"_s, u"WAV"_s},
        CommandSpec{.name = u"util deemphasis"_s,
                    .summary = u"undo the pre-emphasis of WAV and AIFF files"_s,
                    .synopsis = u"[OPTION]... --output-dir DIR PATH..."_s,
                    .details = u"Makes NAME-deemph.wav and so on of every WAV and AIFF file that the paths name, of 44100 or\n"
                               "48000 Hz. An output that exists stays, and its job fails."_s,
                    .options = joined({outputFolderOption()}, batchOptions())});
}

QJsonObject objectOf(const QString &type, const Renaming &renaming)
{
    return {{u"type"_s, type},
            {u"file"_s, lastPathComponent(renaming.from)},
            {u"path"_s, renaming.from},
            {u"newPath"_s, renaming.to}};
}

class UtilRenameCommand final : public Command {
public:
    [[nodiscard]] const CommandSpec &spec() const override
    {
        static const CommandSpec spec{
            .name = u"util rename"_s,
            .summary = u"rename files to a prefix and their number"_s,
            .synopsis = u"[OPTION]... --prefix TEXT PATH..."_s,
            .details = u"Renames all files that the paths name, in the order of their names, each in its folder:\n"
                       "--prefix Disc1- makes Disc1-01.flac, Disc1-02.flac and so on. When one of the new names\n"
                       "exists already, nothing is renamed."_s,
            .options = joined(
                {{.name = u"prefix"_s,
                  .valueName = u"TEXT"_s,
                  .summary = u"what the new names begin with"_s,
                  .manual = u"What the new names begin with. Behind it stand the number of the file, with at least two digits, "
                            u"and its extension."_s,
                  .excluded = {u"undo"_s}},
                 {.name = u"dry-run"_s,
                  .summary = u"tell old and new names, and rename nothing"_s,
                  .manual = u"Tells the old and the new name of each file, and renames nothing."_s},
                 {.name = u"undo"_s,
                  .summary = u"give the files that were renamed last their former names"_s,
                  .manual = u"Gives the files that were renamed last, here or in the window, their former names. Takes no "
                            u"paths. A former name that something else has by now, and a file that is not the one that was "
                            u"renamed, stay as they are, and give status 1."_s,
                  .namesFiles = true,
                  .excluded = {u"prefix"_s, u"dry-run"_s}}},
                reportOptionsWithoutJobs(u"print one JSON object per file, and one for the whole"_s))};
        return spec;
    }
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override
    {
        // What is renamed is told by lines of its own.
        QLoggingCategory::setFilterRules(u"nurv.util.info=false"_s);
        if (arguments.has(u"undo"_s)) {
            if (!arguments.operands.isEmpty())
                throw UsageError(u"--undo takes no paths"_s);
            return undo(arguments, console);
        }
        const QString prefix = arguments.value(u"prefix"_s);
        if (prefix.isEmpty())
            throw UsageError(u"--prefix TEXT is needed"_s);
        FilesRun run(arguments, arguments.operands, console,
                     {.label = u"util"_s, .takes = [](const QString &) { return true; }});
        return renameAll(run, prefix, arguments.has(u"dry-run"_s));
    }

private:
    static ExitStatus renameAll(FilesRun &run, const QString &prefix, bool isTrial)
    {
        const QList<Renaming> plan = batchRename::plan(run.files(), prefix);
        if (const std::optional<QString> objection = batchRename::objection(plan))
            throw UsageError(u"--prefix: "_s + objection->chopped(1));
        if (run.hasRefusals()) {
            // Their numbers would be others.
            run.tellProblem(u"nothing was renamed, since not all files were found"_s);
            return run.finish({});
        }
        if (const std::optional<QString> taken = batchRename::takenPath(plan)) {
            run.tellProblem(u"File at \"%1\" already exists"_s.arg(*taken));
            run.tellProblem(u"nothing was renamed"_s);
            return run.finish({});
        }
        if (isTrial)
            tellTrial(run, plan);
        else
            tellOutcome(run, batchRename::rename(plan, [&run] { return run.isToEnd(); }));
        return run.finish(isTrial ? QString() : u"renamed"_s);
    }

    static ExitStatus undo(const ParsedArguments &arguments, Console &console)
    {
        FilesRun run(arguments, {}, console, {.label = u"util"_s, .takes = [](const QString &) { return true; }});
        const batchRename::Outcome outcome = batchRename::undo([&run] { return run.isToEnd(); });
        if (outcome.done.isEmpty() && outcome.problems.isEmpty() && outcome.leftCount == 0)
            run.tellProblem(u"there is nothing to undo"_s);
        tellOutcome(run, outcome);
        return run.finish(u"renamed"_s);
    }

    static void print(FilesRun &run, const Renaming &renaming)
    {
        run.print(u"%1 -> %2\n"_s.arg(printableLine(renaming.from), printableLine(lastPathComponent(renaming.to))));
    }

    static void tellTrial(FilesRun &run, const QList<Renaming> &plan)
    {
        for (const Renaming &renaming : plan) {
            run.forFile(renaming.from, [&] {
                print(run, renaming);
                return objectOf(u"renaming"_s, renaming);
            });
        }
    }

    /// Of what has another name now, whoever wants the program to end.
    static void tellOutcome(FilesRun &run, const batchRename::Outcome &outcome)
    {
        for (const Renaming &renaming : outcome.done) {
            print(run, renaming);
            run.tellDone(objectOf(u"renamed"_s, renaming));
        }
        run.leave(outcome.leftCount);
        for (const QString &problem : outcome.problems)
            run.tellProblem(problem);
    }
};

} // namespace

std::vector<std::unique_ptr<Command>> makeUtilCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makeExtraction());
    commands.push_back(makeDisc());
    commands.push_back(makeReplayGain());
    commands.push_back(makeDeEmphasis());
    commands.push_back(std::make_unique<UtilRenameCommand>());
    return commands;
}

} // namespace nurv
