// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// `plain` for a tool tip, which would take a name such as "<b>.wav" for markup.
/// Long texts are cut, control characters made visible.
[[nodiscard]] QString toolTipText(const QString &plain);

} // namespace nurv
