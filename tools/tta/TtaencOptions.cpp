// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/TtaencOptions.h"

#include "support/ToolError.h"

#include <filesystem>
#include <system_error>

namespace nurv {

namespace {

const std::string kStandardStream = "-";

TtaencOptions::Mode modeOf(const std::string &option)
{
    if (option == "-e")
        return TtaencOptions::Mode::Encode;
    if (option == "-d")
        return TtaencOptions::Mode::Decode;
    if (option == "-t")
        return TtaencOptions::Mode::Test;
    badArguments("unknown option '" + option + "'");
}

} // namespace

TtaencOptions TtaencOptions::fromArguments(std::span<const std::string> arguments)
{
    TtaencOptions options;
    bool isAfterOptions = false;
    bool hasOutput = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        const bool isOption = !isAfterOptions && argument.size() > 1 && argument.front() == '-';
        if (!isOption) {
            if (argument.empty())
                badArguments("a file name is empty");
            if (!options.input.empty())
                badArguments("more than one input: '" + options.input + "' and '" + argument + "'");
            options.input = argument;
        } else if (argument == "--") {
            isAfterOptions = true;
        } else if (argument == "-o") {
            if (++i == arguments.size() || arguments[i].empty())
                badArguments("-o needs the name of an output");
            if (hasOutput)
                badArguments("more than one output: '" + options.output + "' and '" + arguments[i] + "'");
            options.output = arguments[i];
            hasOutput = true;
        } else {
            const Mode mode = modeOf(argument);
            if (options.mode != Mode::ByInput && options.mode != mode)
                badArguments("only one of -e, -d and -t can be given");
            options.mode = mode;
        }
    }
    if (options.input.empty())
        badArguments("no input given");
    if (options.mode == Mode::Test && hasOutput)
        badArguments("-t writes no output, so that -o cannot be given");
    return options;
}

std::string TtaencOptions::outputName(const std::string &extension) const
{
    if (!output.empty())
        return output;
    if (input == kStandardStream)
        return kStandardStream;
    const std::string name = std::filesystem::path(input).replace_extension(extension);
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(name, ignored)))
        badArguments(name + " is there already; name it with -o to have it replaced");
    return name;
}

} // namespace nurv
