// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// Writes every byte, however many calls that takes. Blocks. Returns false when
/// one fails; `errno` then has the reason, and the first bytes may be written.
[[nodiscard]] bool writeAll(int descriptor, const QByteArray &bytes);

} // namespace nurv
