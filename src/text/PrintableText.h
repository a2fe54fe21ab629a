// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace nurv {

// Names and programs' texts may hold characters that a terminal obeys, or that turn the
// order of others around in a window. Both faces and the bundled programs show them in the
// same way: `visibleText`.

/// The text on one line: line ends and tabs become blanks, other control characters and
/// direction marks "\xNN" and "\u{NNNN}".
[[nodiscard]] QString printableLine(const QString &text);

/// The text with line ends and tabs kept and the others shown in the same way.
[[nodiscard]] QString printableText(const QString &text);

/// JSON text of the same value with the same characters as "\uNNNN".
[[nodiscard]] QString printableJson(const QByteArray &json);

} // namespace nurv
