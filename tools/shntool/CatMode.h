// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <cstdint>

namespace nurv {

struct WaveInfo;

/// Writes parts of files to standard output.
class CatMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *value) override;
    int execute() override;

private:
    [[nodiscard]] uint64_t shownBytes(const WaveInfo &info) const;
    bool write(const WaveInfo &info) const;

    bool m_hidesExtra = false;
    bool m_hidesData = false;
    bool m_hidesHeader = false;
    bool m_hidesPadByte = false;
};

} // namespace nurv
