// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace nurv {

/// Throws NurvFailure when a file's header promises another number of frames than it held.
/// A 0 promises nothing: it is what a pipe's writer and a crashed recorder leave.
void checkPromise(std::optional<std::int64_t> declared, std::int64_t held);

/// Throws NurvFailure with the words for that.
[[noreturn]] void failPromise(std::int64_t declared, std::int64_t held);

/// Where a frame stands: "1:02.500", minutes, seconds and their thousandths.
[[nodiscard]] QString timeOfFrame(std::int64_t frame, int sampleRateHz);

} // namespace nurv
