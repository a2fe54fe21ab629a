// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <chrono>

namespace nurv {

struct BatchSummary;
class BatchProgress;
class BatchWatch;

/// What is said of a batch, in one line each.
namespace batchWords {

/// "7 of 12 · 2 failed · about 3 min left", or "7 of 12 · 2 failed · paused".
[[nodiscard]] QString progress(const BatchProgress &progress, bool isPaused = false);
/// "1 failed · 11 files made in Music · 38 % smaller · 2 min 14 s": first what is not as it was asked for.
[[nodiscard]] QString summary(const BatchSummary &summary);
/// "a few seconds left", "about 40 s left", "about 3 min left", "about 2 h 10 min left".
[[nodiscard]] QString timeLeft(std::chrono::microseconds time);
/// The line for the state in which the batch is; empty before the first.
[[nodiscard]] QString line(const BatchWatch &batch);

} // namespace batchWords

} // namespace nurv
