// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// The version of the application as people know it, for example "1.0.0".
[[nodiscard]] inline QString shortVersionString()
{
    return QStringLiteral(NURV_VERSION);
}

/// The version of this build. Releases are built once, so it is the short version.
[[nodiscard]] inline QString buildVersion()
{
    return QStringLiteral(NURV_VERSION);
}

} // namespace nurv
