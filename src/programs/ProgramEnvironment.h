// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"

namespace nurv {

/// The application's environment, with the resource folder appended to PATH:
/// its programs are found after the user's own programs of the same name.
[[nodiscard]] ChildEnvironment programEnvironment();

/// Sets PATH to its current value, a colon and the folder. Entries that are not absolute,
/// by which a child would find programs in the current folder, are dropped.
void appendToPATH(ChildEnvironment &environment, const QString &folder);

/// Asks the child to write its output as it comes ("NSUnbufferedIO").
void setUnbuffered(ChildEnvironment &environment);

} // namespace nurv
