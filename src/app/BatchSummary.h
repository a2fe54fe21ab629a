// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QtGlobal>

#include <chrono>
#include <optional>

namespace nurv {

class NURVTask;

/// What came of the jobs of a batch.
struct BatchSummary {
    // How the jobs ended; each counts once.
    int done = 0;
    int failed = 0;
    int canceled = 0;

    // Of the jobs that are done.
    int files = 0;          ///< that they made
    int originalsKept = 0;  ///< although their deletion was asked for
    int notInFull = 0;      ///< but for something that was not done besides
    int notProven = 0;      ///< nothing told that the output holds all
    qint64 sourceBytes = 0; ///< of those whose sizes are known on both sides
    qint64 outputBytes = 0;
    QSet<QString> folders = {}; ///< of the files made

    std::chrono::milliseconds duration{0};

    /// Counts a job that is settled. GUI thread.
    void add(const NURVTask &task);
    /// By how much the files made are smaller, in whole percent, negative when they are larger; nothing where it says
    /// nothing.
    [[nodiscard]] std::optional<int> percentSmaller() const;
    /// The folder that has all of the files made, itself or in folders below; empty when there is none but the root.
    [[nodiscard]] QString commonFolder() const;
};

} // namespace nurv
