// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/ChildProcess.h"

namespace nurv {

/// The environment of this process, for children. Names and values come through
/// byte for byte when they are UTF-8, whatever the locale says. Must not run while
/// another thread sets variables.
[[nodiscard]] ChildEnvironment processEnvironment();

} // namespace nurv
