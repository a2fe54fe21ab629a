// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>

namespace nurv {

/// What became of the files and jobs of a batch.
struct BatchCounts {
    // How the jobs ended.
    int complete = 0;
    int failed = 0;
    int canceled = 0;

    // What that means for the files; none of these counts what another one does.
    int files = 0;           ///< that jobs stand for
    int done = 0;            ///< of those: did all that was asked for
    int originalsKept = 0;   ///< complete or not, although their deletion was asked for
    int failedOtherwise = 0; ///< and never came to the deletion
    int notInFull = 0;       ///< complete, but for something that was not done besides
    int skippedExisting = 0; ///< without a job, since their outputs exist
    int refused = 0;         ///< asked for, and nothing that can be worked on

    int notProven = 0;      ///< complete, and nothing told that the output holds all
    qint64 sourceBytes = 0; ///< of the complete jobs
    qint64 outputBytes = 0;

    /// Whether everything was done that the jobs were there for.
    [[nodiscard]] bool allDone() const { return failed + canceled + originalsKept + notInFull == 0; }
};

/// "1999 of 2000 done, 1 original kept; 98 MB to 52 MB in 9 s".
[[nodiscard]] QString closingLine(const BatchCounts &counts, std::chrono::milliseconds duration);

} // namespace nurv
