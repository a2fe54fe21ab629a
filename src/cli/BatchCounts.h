// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>

namespace nurv {

/// What became of the files and jobs of a batch.
struct BatchCounts {
    int complete = 0; ///< of jobs that stand for one file
    int failed = 0;
    int canceled = 0;
    int listsMade = 0;       ///< jobs that stand for no single file and ended well
    int originalsKept = 0;   ///< although their deletion was asked for
    int notInFull = 0;       ///< complete, but for something that was not done besides
    int notProven = 0;       ///< complete, and nothing told that the output holds all
    int skippedExisting = 0; ///< without a job, since their outputs exist
    int refused = 0;         ///< asked for, and nothing that can be worked on
    qint64 sourceBytes = 0;  ///< of the complete jobs
    qint64 outputBytes = 0;

    /// Whether everything was done that the jobs were there for.
    [[nodiscard]] bool allDone() const { return failed + canceled + originalsKept + notInFull == 0; }
};

/// "1999 of 2000 done, 1 original kept; 98 MB to 52 MB in 9 s".
[[nodiscard]] QString closingLine(const BatchCounts &counts, std::chrono::milliseconds duration);

} // namespace nurv
