// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace nurv {

/// Does the step for each channel in turn. One and two channels are written out, so that
/// what is kept of a channel has a fixed place; `Channels` 0 stands for any count.
template<unsigned Channels, typename Step>
[[gnu::always_inline]] inline void forEachChannel(unsigned count, const Step &step)
{
    if constexpr (Channels == 1) {
        step(0);
    } else if constexpr (Channels == 2) {
        step(0);
        step(1);
    } else {
        for (unsigned channel = 0; channel < count; ++channel)
            step(channel);
    }
}

} // namespace nurv
