// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings/Setting.h"

#include <vector>

namespace nurv {

// The settings that a tool has for itself.

[[nodiscard]] std::vector<Setting> decodeSettings();
[[nodiscard]] std::vector<Setting> encodeSettings();
[[nodiscard]] std::vector<Setting> checksumSettings();
[[nodiscard]] std::vector<Setting> shntoolSettings();
[[nodiscard]] std::vector<Setting> fixSettings();
[[nodiscard]] std::vector<Setting> utilSettings();
[[nodiscard]] std::vector<Setting> tagsSettings();
[[nodiscard]] std::vector<Setting> lossySettings();

} // namespace nurv
