// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// The folder with the command-line programs, absolute: `lib/nurv/tools` beside
/// the `bin` folder of the executable, or what `NURV_TOOLS` names.
[[nodiscard]] QString pathToCommandLineTools();

/// `pathToCommandLineTools` joined with the program's name.
[[nodiscard]] QString programPath(const QString &program);

} // namespace nurv
