// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dvda/DvdaOptions.h"

#include "support/ToolError.h"

#include <algorithm>

namespace nurv {

namespace {

constexpr size_t kMostTracks = 99;

/// Of options that it takes because callers give them.
bool hasNoEffect(const std::string &option)
{
    return option == "-P0" || option == "-S" || option == "-f";
}

} // namespace

DvdaOptions DvdaOptions::fromArguments(std::span<const std::string> arguments)
{
    DvdaOptions options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (hasNoEffect(argument))
            continue;
        if (argument == "-g") {
            options.inputs.assign(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, arguments.end());
            break;
        }
        if (argument != "-l" && argument != "-o")
            badArguments("unknown argument '" + argument + "'");
        std::string &name = argument == "-l" ? options.log : options.output;
        if (!name.empty())
            badArguments(argument + " is given more than once");
        if (++i == arguments.size() || arguments[i].empty())
            badArguments(argument + (argument == "-l" ? " needs the name of a log" : " needs the name of a folder"));
        name = arguments[i];
    }
    if (options.output.empty())
        badArguments("no folder given with -o");
    if (options.inputs.empty())
        badArguments("no files given with -g");
    if (std::ranges::find(options.inputs, "") != options.inputs.end())
        badArguments("a file name is empty");
    if (options.inputs.size() > kMostTracks) {
        badArguments(std::to_string(options.inputs.size()) + " files are given, and a disc has at most "
                     + std::to_string(kMostTracks) + " tracks");
    }
    return options;
}

} // namespace nurv
