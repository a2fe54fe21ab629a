// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace nurv {

class UserPrompts;

/// The sources whose format word is one of these.
[[nodiscard]] QStringList sourcesOfFormats(const QStringList &sources, const QStringList &formats);

/// Says that the chosen conversion cannot be made, and why: `what` names the formats
/// or the files.
void tellFormatIsNotAvailable(UserPrompts &prompts, const QStringList &what);

} // namespace nurv
