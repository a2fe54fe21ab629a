// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "samples/SoundComparison.h"

#include <algorithm>

namespace nurv {

/// Tells the percent of a comparison whenever it has grown by one: whoever listens may wait for the GUI thread.
class ProgressTeller {
public:
    /// `progress` may be empty, and is referred to.
    explicit ProgressTeller(const SoundComparison::Progress &progress) : m_progress(progress) {}

    void tell(double percent)
    {
        if (!m_progress || percent < m_told + 1.0)
            return;
        m_told = std::min(percent, 100.0);
        m_progress(m_told);
    }

private:
    const SoundComparison::Progress &m_progress;
    double m_told = -1.0;
};

} // namespace nurv
