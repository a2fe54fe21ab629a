// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

namespace nurv {

/// The application's icon: of the desktop's theme where it is installed, else
/// the built-in one.
[[nodiscard]] QIcon applicationIcon();

} // namespace nurv
