// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shorten/ShortenFormat.h"

#include <cstdint>
#include <span>
#include <string>

namespace nurv::shorten {

/// What the command line asks for.
struct ShortenOptions {
    bool isDecoding = false;
    bool wantsSeekTable = true; ///< where the output is named and the stream allows one
    uint32_t blockSize = kDefaultBlockSize;
    uint32_t meanCount = kDefaultMeanCount;
    std::string input = "-";
    std::string output = "-";

    /// Throws ToolError(BadArguments) with a text that names the argument.
    [[nodiscard]] static ShortenOptions parse(std::span<const std::string> arguments);
};

} // namespace nurv::shorten
