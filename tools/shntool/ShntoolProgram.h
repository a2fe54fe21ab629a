// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// Runs the program: a mode, named by the first argument or by the name of the program itself ("shnlen"), or one of
/// the options without a mode. Returns the exit status.
[[nodiscard]] int runShntool(int argc, char **argv);

} // namespace nurv
