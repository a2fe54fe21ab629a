// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

namespace nurv {

/// Whether `text` begins with `prefix`. An empty prefix gives false.
[[nodiscard]] bool nurvStartsWith(QStringView text, QStringView prefix);

/// Whether `text` ends with `suffix`. An empty suffix gives true.
[[nodiscard]] bool nurvEndsWith(QStringView text, QStringView suffix);

} // namespace nurv
