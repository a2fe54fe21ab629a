// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/CommandTree.h"

#include <QString>

namespace nurv {

/// A manual page whose lines "@options NAME@" are replaced by entries for the options: NAME is a command, for those
/// that it alone has or has for itself; "shared", for those that every command has which takes paths; or "common", for
/// those of all commands. Throws NurvFailure for another name, and when a command's options stand nowhere.
[[nodiscard]] QString manualPage(const QString &page, const CommandTree &commands);

} // namespace nurv
