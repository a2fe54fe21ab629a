// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// How `nurv` ends.
enum class ExitStatus : int {
    Ok = 0,             ///< everything asked for was done
    Failed = 1,         ///< a job failed, or something asked for was not done
    Usage = 2,          ///< wrong usage; nothing was done
    MissingProgram = 3, ///< a program that is needed is not there
    Interrupted = 130,  ///< ended by the user or by the system
};

} // namespace nurv
