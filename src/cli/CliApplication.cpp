// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliApplication.h"

#include "app/BaseTab.h"
#include "app/NURVController.h"
#include "cli/BatchRun.h"
#include "cli/ConsolePrompts.h"
#include "cli/DecodeCommand.h"
#include "cli/DoctorCommand.h"
#include "cli/EncodeCommand.h"
#include "cli/HelpText.h"
#include "cli/HumanUnits.h"
#include "cli/InputFiles.h"
#include "cli/LogOutput.h"
#include "cli/OutputFolder.h"
#include "cli/RecoverCommand.h"
#include "engine/NURVTaskQueue.h"
#include "platform/FileNames.h"
#include "platform/NotificationCenter.h"
#include "platform/NullDesktopServices.h"
#include "platform/SettingsStore.h"
#include "platform/WorkerThreads.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include <signal.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const EncodeCommand kEncode;
const DecodeCommand kDecode;
const std::array<const BatchCommand *, 2> kBatchCommands{&kEncode, &kDecode};

std::vector<const CommandSpec *> allSpecs()
{
    std::vector<const CommandSpec *> specs;
    for (const BatchCommand *command : kBatchCommands)
        specs.push_back(&command->spec());
    specs.push_back(&DoctorCommand::spec());
    specs.push_back(&RecoverCommand::spec());
    return specs;
}

/// The folder of --output-dir; nothing with --beside-source, and when the terminal
/// will be asked for it. Throws UsageError.
std::optional<QString> outputFolder(const ParsedArguments &arguments)
{
    if (arguments.has(u"beside-source"_s))
        return std::nullopt;
    if (!arguments.has(u"output-dir"_s)) {
        if (!Console::canAsk())
            throw UsageError(u"--output-dir DIR or --beside-source is needed"_s);
        return std::nullopt;
    }
    const OutputFolder folder = checkOutputFolder(arguments.value(u"output-dir"_s));
    if (!folder.obstacle.isEmpty())
        throw UsageError(folder.obstacle);
    return folder.path;
}

PromptAnswers answersOf(const ParsedArguments &arguments)
{
    PromptAnswers answers;
    answers.outputFolder = outputFolder(arguments);
    if (arguments.has(u"yes"_s) || arguments.has(u"no"_s))
        answers.answerAll = arguments.has(u"yes"_s);
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

} // namespace

CliApplication::CliApplication(int &argc, char **argv) : m_argc(argc), m_argv(argv) {}

int CliApplication::main(int argc, char **argv)
{
    // A reader that has gone away shows as an error of the write, not as a death.
    ::signal(SIGPIPE, SIG_IGN);
    CliApplication application(argc, argv);
    const ExitStatus status = application.run();
    const bool lostOutput = status == ExitStatus::Ok && application.m_console.outputFailed();
    return static_cast<int>(lostOutput ? ExitStatus::Failed : status);
}

ExitStatus CliApplication::run()
{
    QList<QByteArray> words;
    for (int i = 1; i < m_argc; ++i)
        words.append(QByteArray(m_argv[i]));
    if (words.isEmpty())
        return tellUsageError({}, UsageError(u"a command is needed"_s));
    const QByteArray first = words.takeFirst();
    if (first == "--help" || first == "-h") {
        m_console.writeOutput(generalHelp(allSpecs()));
        return ExitStatus::Ok;
    }
    if (first == "--version") {
        m_console.writeOutput(versionText());
        return ExitStatus::Ok;
    }
    return runCommand(first, words);
}

ExitStatus CliApplication::runCommand(const QByteArray &name, const QList<QByteArray> &words)
{
    const CommandSpec *spec = nullptr;
    for (const CommandSpec *candidate : allSpecs()) {
        if (candidate->name.toUtf8() == name)
            spec = candidate;
    }
    if (!spec) {
        if (name.startsWith('-')) {
            return tellUsageError({}, UsageError(u"unknown option \"%1\"; the options of a command come after it"_s.arg(
                                          displayName(name))));
        }
        QStringList names;
        for (const CommandSpec *known : allSpecs())
            names.append(known->name);
        return tellUsageError(
            {}, UsageError(u"unknown command \"%1\"; there are %2"_s.arg(displayName(name), names.join(u", "_s))));
    }
    try {
        const ParsedArguments arguments = parseArguments(*spec, words);
        if (arguments.has(u"help"_s)) {
            m_console.writeOutput(commandHelp(*spec));
            return ExitStatus::Ok;
        }
        if (arguments.has(u"version"_s)) {
            m_console.writeOutput(versionText());
            return ExitStatus::Ok;
        }
        for (const BatchCommand *command : kBatchCommands) {
            if (&command->spec() == spec)
                return runBatch(*command, arguments);
        }
        const LogOutput log(m_console);
        const QCoreApplication application(m_argc, m_argv);
        if (spec == &RecoverCommand::spec())
            return RecoverCommand::run(arguments, m_console);
        return DoctorCommand::run(arguments, m_console);
    } catch (const UsageError &error) {
        return tellUsageError(spec->name, error);
    }
}

ExitStatus CliApplication::runBatch(const BatchCommand &command, const ParsedArguments &arguments)
{
    command.check(arguments);
    if (arguments.operands.isEmpty())
        throw UsageError(u"no files are given"_s);
    checkOptionPairs(arguments);
    ConsolePrompts prompts(m_console, answersOf(arguments));
    std::optional<int> jobs;
    if (arguments.has(u"jobs"_s))
        jobs = arguments.number(u"jobs"_s, 1, NURVTaskQueue::kMostThreads);

    const LogOutput log(m_console);
    const QCoreApplication application(m_argc, m_argv);
    if (tellOfUnfinishedWork(m_console) && arguments.has(u"skip-existing"_s)) {
        m_console.writeNote(u"--skip-existing could take an unfinished file for a finished one: nothing was done"_s);
        return ExitStatus::Failed;
    }
    NURVController::registerDefaults();
    // What the options choose must not become the window's choice.
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NullDesktopServices services;
    NURVController controller(prompts, services);
    if (jobs)
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), *jobs);
    const std::unique_ptr<BaseTab> tab = command.makeTab(controller, arguments);

    const FileTest isValid = [&](const QString &path) {
        return command.takes(path) && controller.isValidFile(tab->label(), path);
    };
    const FileTest isValidInFolder = [&](const QString &path) {
        return controller.takesFromFolder(tab->label(), path) && isValid(path);
    };
    const InputFiles input = collectInput(arguments.operands, isValid, isValidInFolder);
    for (const QString &line : input.refusals)
        m_console.writeNote(line);
    if (!arguments.has(u"quiet"_s)) {
        for (const QString &line : input.skipped)
            m_console.writeNote(line);
    }
    tab->addCollected(input.intake);
    if (!arguments.has(u"quiet"_s)) {
        for (const QString &line : command.optionsWithoutEffect(arguments, tab->fileNames()))
            m_console.writeNote(line);
    }
    prompts.setSubject([&] { return subjectOf(tab->fileNames(), input.names); });
    const NeededPrograms programs = tab->neededPrograms();
    BatchRun batch(controller.taskQueue(), prompts, m_console,
                   {.report = reportOptions(command.spec(), arguments, input),
                    .programIsMissing = [&] { return !programs.missing().isEmpty(); }});

    ExitStatus status = ExitStatus::Failed;
    if (tab->fileNames().isEmpty()) {
        m_console.writeNote(
            u"there is nothing to %1: no file was found that can be worked on"_s.arg(command.spec().name));
    } else if (const QStringList missing = programs.missing(); !missing.isEmpty()) {
        for (const QString &text : missing) {
            QStringList lines = text.split(u'\n');
            m_console.writeNote(lines.takeFirst());
            for (const QString &line : std::as_const(lines))
                m_console.writeLine(u"    "_s + line);
        }
        status = ExitStatus::MissingProgram;
    } else {
        status = batch.run(*tab);
    }
    if (status == ExitStatus::Ok && !input.refusals.isEmpty())
        status = ExitStatus::Failed;
    batch.printBatchObject(status, input.refusals, input.skipped);
    // A worker that hangs in the file system still uses what an orderly end would
    // destroy. Everything is written already: the console keeps nothing back.
    if (workerThreads::runningCount() > 0)
        std::_Exit(static_cast<int>(status));
    return status;
}

ExitStatus CliApplication::tellUsageError(const QString &command, const UsageError &error)
{
    const QString name = command.isEmpty() ? u"nurv"_s : u"nurv "_s + command;
    m_console.writeLine(u"%1: %2."_s.arg(name, error.reason()));
    m_console.writeLine(u"Try \"%1 --help\"."_s.arg(name));
    return ExitStatus::Usage;
}

} // namespace nurv
