// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"

namespace nurv {

/// The environment of this process, for children. Names and values come through
/// byte for byte when they are UTF-8, whatever the locale says. Must not run while
/// another thread sets variables. PATH alone is not as it was: a child finds no program
/// in the current folder, which may be a stranger's archive.
[[nodiscard]] ChildEnvironment processEnvironment();

/// A PATH without the entries that are empty or relative, in the order of the others; the
/// usual folders where it has no others.
[[nodiscard]] QString safeSearchPath(const QString &path);

} // namespace nurv
