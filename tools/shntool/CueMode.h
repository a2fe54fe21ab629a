// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

namespace nurv {

/// Makes a cue sheet, or split points in bytes, of the lengths of files.
class CueMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *) override { m_wantsSplitPoints = option == 's'; }
    int execute() override;

private:
    int showCueSheet() const;
    int showSplitPoints() const;

    bool m_wantsSplitPoints = false;
};

} // namespace nurv
