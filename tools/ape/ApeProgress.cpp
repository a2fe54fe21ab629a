// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ape/ApeProgress.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kInterval{150};

void print(const std::string &text)
{
    // Standard error is not buffered, and where it is closed nobody waits for progress.
    std::fputs(text.c_str(), stderr);
}

} // namespace

std::string apeProgressLine(double fraction, double elapsedSeconds)
{
    const double remaining = fraction > 0 ? elapsedSeconds * (1 / fraction - 1) : 0;
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(), "Progress: %.1f%% (%.1f seconds remaining, %.1f seconds total)          \r",
                  100 * fraction, remaining, elapsedSeconds);
    return line.data();
}

ApeProgress::~ApeProgress()
{
    if (m_isLineOpen)
        print("\n");
}

void ApeProgress::start(const char *title, uint64_t total)
{
    m_total = total;
    m_started = Clock::now();
    if (m_output == Output::None)
        return;
    print(std::string(title) + '\n');
    write(0, m_started);
}

void ApeProgress::add(uint64_t count)
{
    m_done += count;
    if (m_output == Output::None)
        return;
    const Clock::time_point now = Clock::now();
    if (now - m_written >= kInterval && m_total > 0)
        write(std::min(static_cast<double>(m_done) / static_cast<double>(m_total), 1.0), now);
}

void ApeProgress::finish()
{
    if (m_output == Output::None)
        return;
    write(1, Clock::now());
    print("\nSuccess...\n");
    m_isLineOpen = false;
}

void ApeProgress::write(double fraction, Clock::time_point now)
{
    print(apeProgressLine(fraction, std::chrono::duration<double>(now - m_started).count()));
    m_isLineOpen = true;
    m_written = now;
}

} // namespace nurv
