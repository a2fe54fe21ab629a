// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

class NURVTask;

/// What stands around the reports of a set where a person reads them; the reports themselves are as they are.
class ReportFrame {
public:
    ReportFrame() = default;
    virtual ~ReportFrame() = default;
    ReportFrame(const ReportFrame &) = delete;
    ReportFrame &operator=(const ReportFrame &) = delete;

    /// A member has stopped, at that place of the set. Any thread.
    virtual void addMember(int place, const NURVTask &task) = 0;

    // Once all have stopped.

    /// What went wrong, before the first report; lines, or empty.
    [[nodiscard]] virtual QString head() const = 0;
    /// Counts, behind the last report; lines, or empty.
    [[nodiscard]] virtual QString foot() const = 0;
};

} // namespace nurv
