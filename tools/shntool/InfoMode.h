// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

namespace nurv {

struct WaveInfo;

/// Tells all that is known of files, a page each.
class InfoMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char, const char *) override {}
    int execute() override;

private:
    void show(const WaveInfo &info) const;
};

} // namespace nurv
