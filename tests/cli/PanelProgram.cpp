// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// A program of the command line whose commands ask with panels and choosers, and tell what they were answered.

#include "app/ExamplePanels.h"
#include "cli/BatchOptions.h"
#include "cli/CliApplication.h"
#include "cli/CommandTree.h"
#include "cli/Console.h"
#include "cli/ConsolePrompts.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// Asks, and gives the lines that tell of the answers; no lines when nothing came of it.
using Asks = std::function<QStringList(UserPrompts &prompts)>;

class AskingCommand final : public Command {
public:
    AskingCommand(CommandSpec spec, Asks asks) : m_spec(std::move(spec)), m_asks(std::move(asks))
    {
        m_spec.takesPaths = false;
        m_spec.options = joined(m_spec.options, {{.name = u"yes"_s}, {.name = u"no"_s}, {.name = u"overwrite"_s}});
    }
    [[nodiscard]] const CommandSpec &spec() const override { return m_spec; }
    [[nodiscard]] ExitStatus run(const ParsedArguments &arguments, Console &console) const override
    {
        ConsolePrompts prompts(console, answersOf(m_spec, arguments));
        const QStringList lines = m_asks(prompts);
        for (const QString &line : lines)
            console.writeOutput(line + u'\n');
        switch (prompts.outcome()) {
        case ConsolePrompts::Outcome::Answered: return lines.isEmpty() ? ExitStatus::Failed : ExitStatus::Ok;
        case ConsolePrompts::Outcome::Unanswered: return ExitStatus::Usage;
        case ConsolePrompts::Outcome::Interrupted: return ExitStatus::Interrupted;
        case ConsolePrompts::Outcome::Declined: break;
        }
        return ExitStatus::Failed;
    }

private:
    CommandSpec m_spec;
    Asks m_asks;
};

QStringList prefix(UserPrompts &prompts)
{
    PrefixPanel panel;
    if (!prompts.runPanel(panel.panel()))
        return {};
    return {panel.prefix.text()};
}

QStringList trim(UserPrompts &prompts)
{
    TrimPanel panel;
    if (!prompts.runPanel(panel.panel()))
        return {};
    return {panel.number.stringValue(), QString::number(panel.position.selectedColumn())};
}

QStringList tags(UserPrompts &prompts)
{
    CustomTagsPanel panel;
    QStringList rows;
    if (prompts.runPanel(panel.panel())) {
        for (const PairsControl::Pair &pair : panel.tags.pairs())
            rows.append(pair.name + u" is "_s + pair.value);
    }
    return rows;
}

QStringList names(UserPrompts &prompts)
{
    NamesPanel panel(prompts);
    if (!prompts.runPanel(panel.panel()))
        return {};
    return panel.names.lines();
}

QStringList options(UserPrompts &prompts)
{
    OptionsPanel panel;
    if (!prompts.runPanel(panel.panel()))
        return {};
    return {panel.isOn.isOn() ? u"on"_s : u"off"_s, panel.level.stringValue()};
}

QStringList points(UserPrompts &prompts)
{
    const std::optional<QString> path = prompts.chooseFile({.title = u"Choose file with split point data"_s,
                                                            .extensions = {u"cue"_s, u"txt"_s},
                                                            .option = u"points"_s});
    return path ? QStringList{*path} : QStringList();
}

QStringList pictures(UserPrompts &prompts)
{
    return prompts.chooseFiles({.title = u"Choose pictures"_s, .option = u"picture"_s});
}

QStringList save(UserPrompts &prompts)
{
    const std::optional<QString> path = prompts.chooseSavePath(
        {.title = u"Save CUE sheet as"_s, .suggestedName = u"cuesheet.cue"_s, .option = u"output"_s});
    return path ? QStringList{*path} : QStringList();
}

} // namespace

int panelProgram(int argc, char **argv)
{
    const AskingCommand prefixCommand({.name = u"prefix"_s, .options = {{.name = u"prefix"_s, .valueName = u"TEXT"_s}}}, prefix);
    const AskingCommand trimCommand({.name = u"trim"_s,
                                     .options = {{.name = u"number"_s, .valueName = u"N"_s},
                                                 {.name = u"position"_s, .valueName = u"END"_s}}},
                                    trim);
    const AskingCommand trimByStandard({.name = u"trim start"_s,
                                        .options = {{.name = u"number"_s, .valueName = u"N"_s},
                                                    {.name = u"position"_s, .valueName = u"END"_s, .standard = u"end"_s}}},
                                       trim);
    const AskingCommand tagsCommand({.name = u"tags"_s, .options = {{.name = u"custom"_s, .valueName = u"NAME=VALUE"_s}}}, tags);
    const AskingCommand namesCommand({.name = u"names"_s, .options = {{.name = u"names"_s, .valueName = u"NAME"_s}}}, names);
    const AskingCommand optionsCommand({.name = u"options"_s,
                                        .options = {{.name = u"on"_s}, {.name = u"level"_s, .valueName = u"N"_s}}},
                                       options);
    const AskingCommand pointsCommand({.name = u"points"_s, .options = {{.name = u"points"_s, .valueName = u"FILE"_s}}}, points);
    const AskingCommand picturesCommand({.name = u"pictures"_s, .options = {{.name = u"picture"_s, .valueName = u"FILE"_s}}},
                                        pictures);
    const AskingCommand saveCommand({.name = u"save"_s, .options = {{.name = u"output"_s, .valueName = u"FILE"_s}}}, save);
    const CommandTree tree({&trimByStandard, &prefixCommand, &trimCommand, &tagsCommand, &namesCommand, &optionsCommand,
                            &pointsCommand, &picturesCommand, &saveCommand});
    return CliApplication::main(argc, argv, tree);
}

} // namespace nurv::test

int main(int argc, char **argv)
{
    return nurv::test::panelProgram(argc, argv);
}
