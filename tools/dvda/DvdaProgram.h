// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// The program `dvda`. Returns its exit status.
[[nodiscard]] int runDvda(int argc, char **argv);

} // namespace nurv
