// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliApplication.h"

#include "cli/CommandTree.h"
#include "cli/HelpText.h"
#include "cli/LogOutput.h"
#include "files/FileNames.h"

#include <QCoreApplication>

#include <signal.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool asksForHelp(const QByteArray &word)
{
    return word == "--help" || word == "-h";
}

} // namespace

CliApplication::CliApplication(int &argc, char **argv, const CommandTree &commands)
    : m_argc(argc), m_argv(argv), m_commands(commands)
{
}

int CliApplication::main(int argc, char **argv, const CommandTree &commands)
{
    // A reader that has gone away shows as an error of the write, not as a death.
    ::signal(SIGPIPE, SIG_IGN);
    // A file that may not grow is an error of the write.
    ::signal(SIGXFSZ, SIG_IGN);
    CliApplication application(argc, argv, commands);
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
    if (const Command *const command = m_commands.take(words))
        return runCommand(*command, words);
    const QString first = QString::fromUtf8(words.first());
    const std::vector<const Command *> group = m_commands.group(first);
    if (asksForHelp(words.first())) {
        m_console.writeOutput(generalHelp(m_commands));
    } else if (!group.empty() && words.size() > 1 && asksForHelp(words[1])) {
        m_console.writeOutput(groupHelp(first, group));
    } else if (words.first() == "--version") {
        m_console.writeOutput(versionText());
    } else {
        return tellUnknown(words);
    }
    return ExitStatus::Ok;
}

ExitStatus CliApplication::tellUnknown(const QList<QByteArray> &words)
{
    const QString first = QString::fromUtf8(words.first());
    if (const std::vector<const Command *> group = m_commands.group(first); !group.empty()) {
        QStringList names;
        for (const Command *member : group)
            names.append(secondWord(member->spec()));
        const QString there = u"there are "_s + names.join(u", "_s);
        return tellUsageError(first, words.size() > 1 && !words[1].startsWith('-')
                                         ? UsageError(u"unknown command \"%1\"; %2"_s.arg(displayName(words[1]), there))
                                         : UsageError(u"a further word is needed; "_s + there));
    }
    const QString shown = displayName(words.first());
    if (words.first().startsWith('-'))
        return tellUsageError(
            {}, UsageError(u"unknown option \"%1\"; the options of a command come after it"_s.arg(shown)));
    return tellUsageError({}, UsageError(u"unknown command \"%1\"; there are %2"_s.arg(
                                  shown, m_commands.firstWords().join(u", "_s))));
}

ExitStatus CliApplication::runCommand(const Command &command, const QList<QByteArray> &words)
{
    const CommandSpec &spec = command.spec();
    try {
        const ParsedArguments arguments = parseArguments(spec, words);
        if (arguments.has(u"help"_s)) {
            m_console.writeOutput(commandHelp(spec));
            return ExitStatus::Ok;
        }
        if (arguments.has(u"version"_s)) {
            m_console.writeOutput(versionText());
            return ExitStatus::Ok;
        }
        checkArguments(spec, arguments);
        const LogOutput log(m_console);
        const QCoreApplication application(m_argc, m_argv);
        return command.run(arguments, m_console);
    } catch (const UsageError &error) {
        return tellUsageError(spec.name, error);
    }
}

ExitStatus CliApplication::tellUsageError(const QString &command, const UsageError &error)
{
    const QString name = command.isEmpty() ? u"nurv"_s : u"nurv "_s + command;
    m_console.writeLine(u"%1: %2."_s.arg(name, error.reason()));
    m_console.writeLine(u"Try \"%1 --help\"."_s.arg(name));
    return ExitStatus::Usage;
}

} // namespace nurv
