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
#include "cli/InputFiles.h"
#include "cli/LogOutput.h"
#include "platform/FileNames.h"
#include "platform/NotificationCenter.h"
#include "platform/NullDesktopServices.h"
#include "platform/SettingsStore.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <array>
#include <memory>
#include <optional>

#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kMaximumJobs = 256;

const EncodeCommand kEncode;
const DecodeCommand kDecode;
const std::array<const BatchCommand *, 2> kBatchCommands{&kEncode, &kDecode};

std::vector<const CommandSpec *> allSpecs()
{
    std::vector<const CommandSpec *> specs;
    for (const BatchCommand *command : kBatchCommands)
        specs.push_back(&command->spec());
    specs.push_back(&DoctorCommand::spec());
    return specs;
}

void checkQuestions(const BatchCommand &command, const ParsedArguments &arguments)
{
    const bool saysNo = arguments.has(u"no"_s);
    if (saysNo && arguments.has(u"yes"_s))
        throw UsageError(u"--yes and --no cannot both be given"_s);
    if (saysNo && arguments.has(u"delete-originals"_s))
        throw UsageError(u"--no and --delete-originals cannot both be given"_s);
    if (!arguments.has(u"overwrite"_s))
        return;
    if (saysNo)
        throw UsageError(u"--no and --overwrite cannot both be given"_s);
    if (!command.asksBeforeOverwriting(arguments)) {
        throw UsageError(u"--overwrite goes with --format flac and --beside-source only; "
                         "elsewhere an output that exists is never replaced"_s);
    }
}

/// The folder of --output-dir, or nothing with --beside-source. Throws UsageError.
std::optional<QString> outputFolder(const ParsedArguments &arguments)
{
    const bool isBesideSource = arguments.has(u"beside-source"_s);
    if (isBesideSource == arguments.has(u"output-dir"_s)) {
        throw UsageError(isBesideSource ? u"--output-dir and --beside-source cannot both be given"_s
                                        : u"--output-dir DIR or --beside-source is needed"_s);
    }
    if (isBesideSource)
        return std::nullopt;
    const QString name = arguments.value(u"output-dir"_s);
    const QString folder = absolutePath(name);
    const QFileInfo info(folder);
    if (!info.exists())
        throw UsageError(u"the output folder does not exist: %1"_s.arg(name));
    if (!info.isDir())
        throw UsageError(u"the output folder is no folder: %1"_s.arg(name));
    // Asking for the permission says too little: the file system may be read-only.
    QByteArray probe = folder.toUtf8() + "/.nurv-XXXXXX";
    const int fd = ::mkstemp(probe.data());
    if (fd < 0) {
        throw UsageError(
            u"the output folder cannot be written: %1 (%2)"_s.arg(name, QString::fromLocal8Bit(::strerror(errno))));
    }
    ::close(fd);
    ::unlink(probe.constData());
    return folder;
}

PromptAnswers answersOf(const ParsedArguments &arguments)
{
    PromptAnswers answers;
    answers.outputFolder = outputFolder(arguments);
    if (arguments.has(u"yes"_s) || arguments.has(u"no"_s))
        answers.answerAll = arguments.has(u"yes"_s);
    answers.overwrite = arguments.has(u"overwrite"_s);
    return answers;
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
        const QString what = name.startsWith('-') ? u"option"_s : u"command"_s;
        return tellUsageError({}, UsageError(u"unknown %1 \"%2\""_s.arg(what, displayName(name))));
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
        return DoctorCommand::run(arguments, m_console);
    } catch (const UsageError &error) {
        return tellUsageError(spec->name, error);
    }
}

ExitStatus CliApplication::runBatch(const BatchCommand &command, const ParsedArguments &arguments)
{
    command.check(arguments);
    checkQuestions(command, arguments);
    ConsolePrompts prompts(m_console, answersOf(arguments));
    if (arguments.has(u"jobs"_s))
        static_cast<void>(arguments.number(u"jobs"_s, 1, kMaximumJobs));
    if (arguments.operands.isEmpty())
        throw UsageError(u"no files are given"_s);

    const LogOutput log(m_console);
    const QCoreApplication application(m_argc, m_argv);
    NURVController::registerDefaults();
    // What the options choose must not become the window's choice.
    SettingsStore::instance().setPersistence(SettingsStore::Persistence::MemoryOnly);
    NullDesktopServices services;
    NURVController controller(prompts, services);
    if (arguments.has(u"jobs"_s)) {
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification),
                                            arguments.value(u"jobs"_s).toInt());
    }
    const std::unique_ptr<BaseTab> tab = command.makeTab(controller, arguments);

    const InputFiles input = collectInput(arguments.operands, [&](const QString &path) {
        return command.takes(path) && controller.isValidFile(tab->label(), path);
    });
    for (const QString &line : input.refusals)
        m_console.writeNote(line);
    if (!arguments.has(u"quiet"_s)) {
        for (const QString &line : input.skipped)
            m_console.writeNote(line);
    }
    tab->addCollected(input.intake);
    const NeededPrograms programs = command.neededPrograms(arguments, tab->fileNames());
    BatchRun batch(controller.taskQueue(), prompts, m_console,
                   {.json = arguments.has(u"json"_s), .quiet = arguments.has(u"quiet"_s), .programIsMissing = [&] {
                        return !programs.missing().isEmpty();
                    }});

    ExitStatus status = ExitStatus::Failed;
    if (tab->fileNames().isEmpty()) {
        m_console.writeNote(
            u"there is nothing to %1: no file was found that can be worked on"_s.arg(command.spec().name));
    } else if (const QStringList missing = programs.missing(); !missing.isEmpty()) {
        for (const QString &text : missing)
            m_console.writeNote(text);
        status = ExitStatus::MissingProgram;
    } else {
        status = batch.run(*tab);
    }
    if (status == ExitStatus::Ok && !input.refusals.isEmpty())
        status = ExitStatus::Failed;
    batch.printBatchObject(status, input.refusals, input.skipped);
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
