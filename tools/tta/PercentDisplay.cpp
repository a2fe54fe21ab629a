// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tta/PercentDisplay.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace nurv {

PercentDisplay::PercentDisplay(std::string before, std::string after)
    : m_before(std::move(before)), m_after(std::move(after))
{
}

PercentDisplay::~PercentDisplay()
{
    if (m_shownLength > 0)
        std::fputs("\n", stderr);
}

void PercentDisplay::show(uint64_t done, uint64_t total)
{
    if (total == 0)
        return;
    const uint64_t percent = std::min(done, total) * 100 / total;
    if (percent <= m_percent)
        return;
    m_percent = percent;
    const std::string text = m_before + std::to_string(percent) + m_after;
    // Standard error is not buffered: this is one write.
    std::fputs((std::string(m_shownLength, '\b') + text).c_str(), stderr);
    m_shownLength = text.size();
}

} // namespace nurv
