// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace nurv {

/// A line on standard error that counts to 100, each step over the one before by means
/// of backspaces. A step is one write, so that a program reading along gets it whole.
class PercentDisplay {
public:
    /// A step is the texts around the number.
    PercentDisplay(std::string before, std::string after);
    /// Ends the line.
    ~PercentDisplay();
    PercentDisplay(const PercentDisplay &) = delete;
    PercentDisplay &operator=(const PercentDisplay &) = delete;

    /// Shows the percentage if it has grown: at most 100 steps.
    void show(uint64_t done, uint64_t total);

private:
    std::string m_before;
    std::string m_after;
    uint64_t m_percent = 0;
    size_t m_shownLength = 0;
};

} // namespace nurv
