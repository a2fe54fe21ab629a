// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

namespace nurv {

struct WaveInfo;

/// Takes away what stands behind the data, and writes plain headers.
class StripMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    [[nodiscard]] bool hasPadByte(const WaveInfo &info) const;
    bool strip(const WaveInfo &info) const;

    bool m_keepsChunks = false;
    bool m_keepsHeader = false;
};

} // namespace nurv
