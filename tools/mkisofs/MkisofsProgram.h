// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// The program `mkisofs`. Returns its exit status.
[[nodiscard]] int runMkisofs(int argc, char **argv);

} // namespace nurv
