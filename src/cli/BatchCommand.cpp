// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchCommand.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "base/NotificationCenter.h"
#include "base/WorkerThreads.h"
#include "cli/BatchRun.h"
#include "cli/commands/RecoverCommand.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"
#include "cli/InputFiles.h"
#include "cli/OutputFolder.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "text/HumanUnits.h"
#include "toolbox/Toolbox.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The answers of the options, with the output folder looked at before anything else is done. Throws UsageError.
PromptAnswers checkedAnswers(const CommandSpec &command, const ParsedArguments &arguments)
{
    const QString kOption = u"output-dir"_s;
    PromptAnswers answers = answersOf(command, arguments);
    const OptionSpec *const option = command.option(kOption);
    const bool isMeant =
        option && (option->formats.isEmpty() || option->formats.contains(arguments.value(command.selector)));
    if (!isMeant || arguments.has(u"beside-source"_s))
        return answers;
    if (!arguments.has(kOption)) {
        if (!Console::canAsk())
            throw UsageError(command.option(u"beside-source"_s) ? u"--output-dir DIR or --beside-source is needed"_s
                                                                : u"--output-dir DIR is needed"_s);
        return answers;
    }
    const OutputFolder folder = checkOutputFolder(arguments.value(kOption));
    if (!folder.obstacle.isEmpty())
        throw UsageError(folder.obstacle);
    return answers;
}

/// "12 files, 1.3 GB: disc1/a.wav, disc1/b.wav, disc1/c.wav, ...".
QString subjectOf(const QStringList &files, const SourceNames &names)
{
    constexpr qsizetype kExamples = 3;
    qint64 bytes = 0;
    for (const QString &path : files)
        bytes += QFileInfo(path).size();
    QStringList examples;
    for (const QString &path : files.first(std::min(files.size(), kExamples)))
        examples.append(names.nameOf(path));
    if (files.size() > kExamples)
        examples.append(u"..."_s);
    return u"%1, %2: %3"_s.arg(files.size() == 1 ? u"1 file"_s : u"%1 files"_s.arg(files.size()), sizeText(bytes),
                               examples.join(u", "_s));
}

BatchReport::Options reportOptions(const CommandSpec &command, const ParsedArguments &arguments,
                                   const InputFiles &input)
{
    QStringList switches;
    for (const OptionSpec &option : command.options)
        switches.append(u"--"_s + option.name);
    return {.json = arguments.has(u"json"_s),
            .quiet = arguments.has(u"quiet"_s),
            .verbose = arguments.has(u"verbose"_s),
            .names = input.names,
            .switches = switches,
            .refused = static_cast<int>(input.refusals.size())};
}

void tellMissing(Console &console, const QStringList &texts)
{
    for (const QString &text : texts) {
        QStringList lines = text.split(u'\n');
        console.writeNote(lines.takeFirst());
        for (const QString &line : std::as_const(lines))
            console.writeLine(u"    "_s + line);
    }
}

} // namespace

std::unique_ptr<BaseTab> BatchCommand::tabFor(NURVController &controller, const ParsedArguments &arguments) const
{
    std::unique_ptr<BaseTab> tab = makeTab(controller);
    for (const OptionSpec &option : spec().options) {
        if (!option.set)
            continue;
        const bool counts = arguments.has(option.name) || !option.standard.isEmpty();
        option.set(*tab, counts ? std::optional(arguments.value(option.name)) : std::nullopt);
    }
    tab->displayRelevantOptions();
    return tab;
}

ExitStatus BatchCommand::run(const ParsedArguments &arguments, Console &console) const
{
    ConsolePrompts prompts(console, checkedAnswers(spec(), arguments));
    if (tellOfUnfinishedWork(console) && arguments.has(u"skip-existing"_s)) {
        console.writeNote(u"--skip-existing could take an unfinished file for a finished one: nothing was done"_s);
        return ExitStatus::Failed;
    }
    NURVController::registerDefaults(toolbox());
    // What the options choose must not become the window's choice.
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NullDesktopServices services;
    NURVController controller(prompts, services, toolbox());
    if (const std::optional<int> jobs = arguments.number(u"jobs"_s))
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), *jobs);
    const std::unique_ptr<BaseTab> tab = tabFor(controller, arguments);

    const InputFiles input = collectInput(
        arguments.operands, controller.arrivals(),
        {.label = tab->label(), .door = Door::CommandLine, .paths = {}, .makesJob = [this](const QString &path) {
             return takes(path);
         }});
    for (const QString &line : input.refusals)
        console.writeNote(line);
    if (!arguments.has(u"quiet"_s)) {
        for (const QString &line : input.skipped)
            console.writeNote(line);
    }
    controller.arrivals().deliver(tab->label(), input.intake);
    if (!tab->fileNames().isEmpty())
        checkFiles(tab->fileNames());
    if (!arguments.has(u"quiet"_s)) {
        for (const QString &line : optionsWithoutEffect(arguments, tab->fileNames()))
            console.writeNote(line);
    }
    prompts.setSubject([&] { return subjectOf(tab->fileNames(), input.names); });
    const NeededPrograms programs = tab->neededPrograms();
    BatchRun batch(controller.taskQueue(), prompts, console,
                   {.report = reportOptions(spec(), arguments, input),
                    .programIsMissing = [&] { return !programs.missing().isEmpty(); }});

    ExitStatus status = ExitStatus::Failed;
    if (tab->fileNames().isEmpty()) {
        console.writeNote(prompts.objections().isEmpty()
                              ? u"there is nothing to do: no file was found that can be worked on"_s
                              : u"nothing was done"_s);
    } else if (!input.refusals.isEmpty() && needsAllFiles(arguments)) {
        console.writeNote(u"nothing was done, since not all files can be worked on"_s);
    } else if (const QStringList missing = programs.missing(); !missing.isEmpty()) {
        tellMissing(console, missing);
        status = ExitStatus::MissingProgram;
    } else {
        status = batch.run(*tab);
    }
    if (status == ExitStatus::Ok && !input.refusals.isEmpty())
        status = ExitStatus::Failed;
    batch.printBatchObject(status, input.refusals + prompts.objections(), input.skipped);
    // A worker that hangs in the file system still uses what an orderly end would
    // destroy. Everything is written already: the console keeps nothing back.
    if (workerThreads::runningCount() > 0)
        std::_Exit(static_cast<int>(status));
    return status;
}

} // namespace nurv
