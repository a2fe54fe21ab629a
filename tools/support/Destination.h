// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace nurv {

/// The path to rename a new file to, so that it takes the place of what `name` stands
/// for: symbolic links are followed, also to where nothing is yet. Throws
/// ToolError(Write) for a folder, for a file that may not be written (which a rename
/// would replace all the same), for links that lead nowhere and for those of /proc/PID/fd,
/// which stand for an open file and not for its name.
[[nodiscard]] std::string destinationOf(const std::string &name);

} // namespace nurv
