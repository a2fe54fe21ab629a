// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>

namespace nurv {

/// "1 byte", "640 bytes", "35 kB", "1.3 GB": decimal units, two digits at least where
/// there is a unit.
[[nodiscard]] QString sizeText(qint64 bytes);

/// "under 1 s", "9 s", "3 min 20 s", "2 h 5 min".
[[nodiscard]] QString durationText(std::chrono::milliseconds duration);

/// The same to the minute from the first one on: "9 s", "3 min", "2 h 5 min".
[[nodiscard]] QString aboutDurationText(std::chrono::milliseconds duration);

} // namespace nurv
