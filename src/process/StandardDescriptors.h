// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// Opens those of the descriptors 0 to 2 that the program was started without on
/// /dev/null, so that no file that is opened later becomes one of them and takes what is
/// written for the user. Writing to such a standard output fails. First thing in main(). False: it cannot be done, and the program
/// must not go on.
[[nodiscard]] bool openStandardDescriptors();

} // namespace nurv
