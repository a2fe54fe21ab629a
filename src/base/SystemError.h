// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <system_error>

namespace nurv {

/// The system's text for a value of `errno`.
[[nodiscard]] inline QString systemErrorText(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

} // namespace nurv
