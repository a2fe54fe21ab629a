// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/TimeText.h"

#include "shntool/WaveInfo.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>

namespace nurv {

namespace {

std::string padded(uint64_t number, int digits)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%0*" PRIu64, digits, number);
    return text.data();
}

} // namespace

std::string TimeText::whole(uint64_t seconds) const
{
    const uint64_t minutes = seconds / 60;
    const std::string text = padded(seconds % 60, 2);
    if (m_hasHours && minutes >= 60)
        return std::to_string(minutes / 60) + ':' + padded(minutes % 60, 2) + ':' + text;
    return std::to_string(minutes) + ':' + text;
}

std::string TimeText::ofCdBytes(uint64_t bytes) const
{
    const uint64_t frames = bytes / kSectorBytes + (bytes % kSectorBytes >= kSectorBytes / 2 ? 1 : 0);
    return whole(frames / kSectorsPerSecond) + '.' + padded(frames % kSectorsPerSecond, 2);
}

std::string TimeText::ofSeconds(double seconds) const
{
    // No header tells of more, but a sum may.
    constexpr double kMost = 1e15;
    seconds = std::min(seconds, kMost);
    auto full = static_cast<uint64_t>(seconds);
    auto milliseconds = static_cast<uint64_t>((seconds - static_cast<double>(full)) * 1000.0 + 0.5);
    if (milliseconds == 1000) {
        milliseconds = 0;
        ++full;
    }
    return whole(full) + '.' + padded(milliseconds, 3);
}

std::string TimeText::of(const WaveHeader &header, uint64_t bytes) const
{
    return header.isCdQuality() ? ofCdBytes(bytes) : ofSeconds(secondsOf(header, bytes));
}

double secondsOf(const WaveHeader &header, uint64_t bytes)
{
    const uint64_t rate = header.calculatedRate();
    return rate == 0 ? 0 : static_cast<double>(bytes) / static_cast<double>(rate);
}

} // namespace nurv
