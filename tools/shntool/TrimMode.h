// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/Mode.h"

#include <cstdint>
#include <optional>

namespace nurv {

struct WaveInfo;

/// Takes silence, which is zero bytes, from the ends of files.
class TrimMode final : public Mode {
public:
    using Mode::Mode;

    void takeOption(char option, const char *) override
    {
        m_wantsStart = option == 'b';
        m_wantsEnd = option == 'e';
    }
    int execute() override;

private:
    /// Bytes of silence at both ends, in whole sample frames.
    struct Silence {
        uint64_t start = 0;
        uint64_t end = 0;
    };

    bool trim(const WaveInfo &info) const;
    /// Nothing where there is nothing to trim, which is told.
    std::optional<Silence> findSilence(const WaveInfo &info) const;
    bool write(const WaveInfo &info, const Silence &silence) const;

    bool m_wantsStart = true;
    bool m_wantsEnd = true;
};

} // namespace nurv
