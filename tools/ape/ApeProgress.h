// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace nurv {

/// The line on standard error that tells how far the work is. Programs that start this one
/// read it: the words and their order stay as they are.
///
///     Progress: 12.3% (1.2 seconds remaining, 3.4 seconds total)          <carriage return>
///
/// "total" is the time since the start. A quiet one writes nothing.
class ApeProgress {
public:
    enum class Output { StandardError, None };

    explicit ApeProgress(Output output) : m_output(output) {}
    /// Ends the line where the work failed.
    ~ApeProgress();
    ApeProgress(const ApeProgress &) = delete;
    ApeProgress &operator=(const ApeProgress &) = delete;

    /// Writes what is done now, for example "Compressing...", and begins at 0 of `total`.
    void start(const char *title, uint64_t total);

    /// More is done. Writes a line when the last one is a while ago.
    void add(uint64_t count);

    /// Everything is done.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void write(double fraction, Clock::time_point now);

    Output m_output;
    uint64_t m_total = 0;
    uint64_t m_done = 0;
    bool m_isLineOpen = false;
    Clock::time_point m_started;
    Clock::time_point m_written;
};

/// The line, with the carriage return.
[[nodiscard]] std::string apeProgressLine(double fraction, double elapsedSeconds);

} // namespace nurv
