// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/HelpText.h"

#include "base/Version.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr QLatin1String kExitStatus(
    "Exit status: 0 everything was done; 1 a job failed or something asked for was not\n"
    "done; 2 wrong usage; 3 a needed program is missing; 130 interrupted.\n");

QString optionText(const OptionSpec &option)
{
    return option.valueName.isEmpty() ? u"--"_s + option.name : u"--"_s + option.name + u'=' + option.valueName;
}

/// A line for each.
QString listOf(const std::vector<const Command *> &commands)
{
    qsizetype width = 0;
    for (const Command *command : commands)
        width = std::max(width, command->spec().name.size());
    QString text;
    for (const Command *command : commands)
        text += u"  "_s + command->spec().name.leftJustified(width + 3) + command->spec().summary + u'\n';
    return text;
}

} // namespace

QString generalHelp(const CommandTree &commands)
{
    return u"Usage: nurv COMMAND [OPTION]... [PATH]...\n"
           "\n"
           "Batch work on lossless audio files, without windows.\n"
           "\n"
           "Commands:\n"_s
           + listOf(commands.commands())
           + u"\n"
             "\"nurv COMMAND --help\" tells the options of a command; \"nurv --version\" prints\n"
             "the version. Options and paths may be mixed; \"--\" ends the options.\n"
             "\n"_s
           + kExitStatus;
}

QString groupHelp(const QString &word, const std::vector<const Command *> &group)
{
    return u"Usage: nurv %1 COMMAND [OPTION]... [PATH]...\n\nCommands:\n"_s.arg(word) + listOf(group)
           + u"\n\"nurv %1 COMMAND --help\" tells the options of a command.\n\n"_s.arg(word) + kExitStatus;
}

QString commandHelp(const CommandSpec &command)
{
    QString text = u"Usage: nurv %1 %2\n\n%3\n\nOptions:\n"_s.arg(command.name, command.synopsis, command.details);
    qsizetype width = 0;
    for (const OptionSpec &option : command.options)
        width = std::max(width, optionText(option).size());
    for (const OptionSpec &option : command.options)
        text += u"  "_s + optionText(option).leftJustified(width + 2) + option.summary + u'\n';
    return text + u'\n' + kExitStatus;
}

QString versionText()
{
    return u"nurv (Nurv Audio Workbench) %1\n"_s.arg(shortVersionString());
}

} // namespace nurv
