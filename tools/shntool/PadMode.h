// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

namespace nurv {

struct WaveInfo;

/// Fills up the last, or the first, sector of files of CD quality with silence.
class PadMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *) override { m_padsFront = option == 'b'; }
    int execute() override;

private:
    bool pad(const WaveInfo &info) const;

    bool m_padsFront = false;
};

} // namespace nurv
