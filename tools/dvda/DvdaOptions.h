// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <vector>

namespace nurv {

/// What the command line asks for.
struct DvdaOptions {
    std::string log; ///< empty: none
    std::string output;
    std::vector<std::string> inputs;

    /// Throws ToolError(BadArguments).
    [[nodiscard]] static DvdaOptions fromArguments(std::span<const std::string> arguments);
};

} // namespace nurv
