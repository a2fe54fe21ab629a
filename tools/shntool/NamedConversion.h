// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nurv {

/// A call `shntool conv ... -n FILE ... SOURCE`: the conversion of one source to a file of
/// a given name, which the distribution's shntool does not offer.
struct NamedConversion {
    /// What -O says about a file that has the name already.
    enum class Overwrite { Ask, Always, Never };

    std::string output; ///< the file to make
    Overwrite overwrite = Overwrite::Ask;
    /// The options that the distribution's program knows, without -d.
    std::vector<std::string> options;
    /// The file to convert; nothing where -t has the sound come from standard input.
    std::optional<std::string> source;
};

/// Reads what follows the word `conv`. Returns nothing where the distribution's program
/// has to answer by itself: without -n, for a question, and for options that it will
/// refuse. Throws ToolError(BadArguments) for a -n that makes no sense.
[[nodiscard]] std::optional<NamedConversion> parseNamedConversion(std::span<const std::string> arguments);

} // namespace nurv
