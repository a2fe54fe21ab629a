// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Panel.h"

#include <QString>
#include <QStringList>

namespace nurv {

// The controls of a panel as words: the values of options, and lines that are typed on a terminal.

/// Whether somebody must say what it is to be: a box that nobody ticks is off, and what is hidden or disabled does not count.
[[nodiscard]] bool mustBeAnswered(const PanelField &field);

/// Whether it takes one word after the other: rows of a name and a value, lines.
[[nodiscard]] bool takesSeveral(const PanelField &field);

/// What it takes, as it goes on after "takes": "a whole number from 0 to 99"; empty: any text.
[[nodiscard]] QString kindOfWords(const PanelField &field);

/// The value that it has, as it would be typed; empty when it has none, or several.
[[nodiscard]] QString wordOf(const PanelField &field);

/// Gives the words to its control, the last one where it takes no more. Returns why one of them is no
/// value, as it goes on after the name of the option or field, and then leaves the control as it was; empty when all is well.
[[nodiscard]] QString takeWords(const PanelField &field, const QStringList &words);

} // namespace nurv
