// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramStage.h"

namespace nurv {

ProgramStage ProgramStage::unwatched() const
{
    ProgramStage stage = *this;
    stage.stopsOnError = false;
    stage.stopsOnCancel = false;
    stage.looksAtExitStatus = false;
    return stage;
}

} // namespace nurv
