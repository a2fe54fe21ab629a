// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>

namespace nurv {

/// What the arguments of `ttaenc` ask for.
struct TtaencOptions {
    enum class Mode { ByInput, Encode, Decode, Test };

    Mode mode = Mode::ByInput;
    std::string input;  ///< a path, or "-" for standard input
    std::string output; ///< a path, "-" for standard output, or empty for a name beside the input

    /// Throws ToolError(BadArguments).
    static TtaencOptions fromArguments(std::span<const std::string> arguments);

    /// The output, or the input's name with the other extension. Throws
    /// ToolError(BadArguments) when a file of that name is there already: only an output
    /// that was named is replaced.
    [[nodiscard]] std::string outputName(const std::string &extension) const;
};

} // namespace nurv
