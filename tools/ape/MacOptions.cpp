// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/MacOptions.h"

#include "support/ToolError.h"

#include <vector>

namespace nurv {

namespace {

/// An option: dashes alone are names.
bool isOption(const std::string &argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

ApeLevel levelOf(const std::string &option)
{
    for (const ApeLevel level :
         {ApeLevel::Fast, ApeLevel::Normal, ApeLevel::High, ApeLevel::ExtraHigh, ApeLevel::Insane}) {
        if (option == "-c" + std::to_string(static_cast<unsigned>(level)))
            return level;
    }
    badArguments("there is no level " + option + ", only -c1000, -c2000, -c3000, -c4000 and -c5000");
}

} // namespace

MacOptions MacOptions::parse(std::span<const std::string> arguments)
{
    MacOptions options;
    std::vector<std::string> names;
    std::string action;
    bool areOptionsOver = false;
    for (const std::string &argument : arguments) {
        if (areOptionsOver || !isOption(argument)) {
            names.push_back(argument);
        } else if (argument == "--") {
            areOptionsOver = true;
        } else {
            if (!action.empty())
                badArguments(action + " and " + argument + " cannot be given together");
            action = argument;
        }
    }
    if (action == "-d") {
        options.action = Action::Decode;
    } else if (action.starts_with("-c")) {
        options.action = Action::Encode;
        options.level = levelOf(action);
    } else if (action != "-v") {
        badArguments(action.empty() ? "one of -cLEVEL, -d and -v is missing" : "unknown option " + action);
    }
    const size_t expected = options.action == Action::Verify ? 1 : 2;
    if (names.size() > expected)
        badArguments("unexpected argument " + names[expected]);
    if (names.empty())
        badArguments("the input file is missing");
    if (names.size() < expected)
        badArguments("the output file is missing");
    options.input = names[0];
    if (expected == 2)
        options.output = names[1];
    return options;
}

} // namespace nurv
