// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace nurv {

class Mode;
struct ModeRun;

/// What the program can do, by name.
struct ModeEntry {
    std::string_view name;
    std::string_view description;
    std::string_view usage;   ///< what follows the command in a call
    const char *letters;      ///< of its own options, as getopt(3) takes them
    const char *help;         ///< on them
    bool writesFiles = false; ///< and takes the options for that
    std::unique_ptr<Mode> (*make)(ModeRun &run);
};

[[nodiscard]] std::span<const ModeEntry> modeTable();

/// Null where there is none.
[[nodiscard]] const ModeEntry *modeNamed(std::string_view name);

/// The answer to -h.
[[nodiscard]] std::string helpOf(const ModeEntry &mode, const std::string &command);

} // namespace nurv
