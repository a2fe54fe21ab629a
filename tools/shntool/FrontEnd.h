// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace nurv {

/// The exit status when there is no shntool to hand over to.
inline constexpr int kNothingToHandOverTo = 127;

/// Becomes the distribution's shntool (see `findDistributionProgram`) with the same
/// arguments, streams and environment, but for PATH, where the folder of this program
/// is added: the codecs are there. Only `conv` with the option -n is done here:
///
///     conv -n FILE SOURCE ──> shntool conv -d .nurv-XXXXXX SOURCE ──> its one file ── rename ──> FILE
///
/// What shntool writes and the status it ends with are those of the call. A failure
/// leaves FILE as it was. Returns the exit status.
[[nodiscard]] int runFrontEnd(int argc, char **argv, const std::string &usualProgram);

} // namespace nurv
