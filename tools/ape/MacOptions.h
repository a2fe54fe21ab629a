// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ape/ApeFormat.h"

#include <span>
#include <string>

namespace nurv {

/// What the arguments ask for.
struct MacOptions {
    enum class Action { Encode, Decode, Verify };

    Action action = Action::Verify;
    ApeLevel level = ApeLevel::Normal;
    std::string input;
    std::string output; ///< empty when verifying

    /// Throws ToolError(BadArguments), which names the wrong one.
    [[nodiscard]] static MacOptions parse(std::span<const std::string> arguments);
};

} // namespace nurv
