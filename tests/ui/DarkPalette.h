// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

namespace nurv::test {

/// Colours like those of the desktops' dark schemes.
[[nodiscard]] QPalette darkPalette();

} // namespace nurv::test
