// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// The variable that stands in the environment of every child of this process, and of
/// what a child starts in turn: by its value they are known from all other programs, also
/// when this process is gone.
inline constexpr char kProcessMarkVariable[] = "NURV_STARTED_BY";

/// Its value: 32 hexadecimal digits, drawn once in the life of a process. Any thread.
[[nodiscard]] const QByteArray &processMark();

} // namespace nurv
