// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/Setting.h"

#include <QString>

#include <vector>

namespace nurv {

struct Tool;

/// All of the user's settings: those that several tools share, then those of each tool.
[[nodiscard]] std::vector<Setting> settingsTable(const std::vector<Tool> &tools);

/// The one of that key; null when there is none.
[[nodiscard]] const Setting *settingOf(const std::vector<Setting> &settings, const QString &key);

} // namespace nurv
