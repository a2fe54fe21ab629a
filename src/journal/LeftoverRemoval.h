// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/Leftover.h"

namespace nurv {

/// Removes what was found, or puts it back, if it is still what was found; notes in it
/// what became of it, and why it was left. Never replaces anything, follows no link.
/// Blocks.
void carryOut(Leftover &leftover);

} // namespace nurv
