// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

class ToolError;

/// What a program says of itself.
struct ToolText {
    const char *name;
    /// The whole answer to --help.
    const char *help;
};

/// Writes the line to standard error, with what a terminal would obey made visible: it may
/// hold the name of a file.
void printMessage(const std::string &line);

/// Runs the program: answers --help and --version, prepares the signals, calls `run` with
/// the arguments and turns what it throws into a text and an exit status. `report`,
/// where given, prints a failure in place of "NAME: TEXT" on standard error.
[[nodiscard]] int toolMain(const ToolText &text, int argc, char **argv,
                           const std::function<int(std::span<const std::string>)> &run,
                           const std::function<void(const ToolError &)> &report = {});

} // namespace nurv
