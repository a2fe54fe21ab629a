// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>

namespace nurv {

/// What the command line asks for.
struct MkisofsOptions {
    std::string image;
    std::string folder;

    /// Throws ToolError(BadArguments).
    [[nodiscard]] static MkisofsOptions fromArguments(std::span<const std::string> arguments);
};

} // namespace nurv
