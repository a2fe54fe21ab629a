// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitStatus.h"
#include "cli/FilesRun.h"

namespace nurv {

class Console;

/// What the commands about tags work on.
[[nodiscard]] FilesRun::Page tagsPage();

/// `nurv tags set --from-json`. Throws UsageError for what is no output of `nurv tags show --json`.
[[nodiscard]] ExitStatus restoreTags(const ParsedArguments &arguments, Console &console);

} // namespace nurv
