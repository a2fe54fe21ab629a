// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QStringList>

namespace nurv {

/// The width of the widest text in the font, in logical pixels; 0 without texts.
/// Quick for long lists: only the texts that come near the widest by the sum of
/// their characters' widths are laid out.
[[nodiscard]] double widestText(const QStringList &texts, const QFont &font);

} // namespace nurv
