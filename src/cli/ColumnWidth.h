// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// How many columns of a terminal the text takes: 2 for wide characters, 0 for
/// combining ones.
[[nodiscard]] int displayWidth(const QString &text);

/// The text cut to `columns`, with an ellipsis in the middle when it is longer,
/// so that the number and the extension of a file name both stay visible.
[[nodiscard]] QString elideMiddle(const QString &text, int columns);

/// The text cut to `columns`, with an ellipsis at the end when it is longer.
[[nodiscard]] QString elideEnd(const QString &text, int columns);

} // namespace nurv
