// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace nurv {

struct WaveHeader;

/// How a length is written: "m:ss.ff" with frames of a CD, rounded to the nearest, or "m:ss.nnn" with
/// milliseconds.
class TimeText {
public:
    /// `hasHours`: "h:mm:ss" in front of the dot.
    explicit TimeText(bool hasHours) : m_hasHours(hasHours) {}

    [[nodiscard]] std::string ofCdBytes(uint64_t bytes) const;
    [[nodiscard]] std::string ofSeconds(double seconds) const;
    /// Of that many bytes of sound: in frames where the sound has the quality of a CD.
    [[nodiscard]] std::string of(const WaveHeader &header, uint64_t bytes) const;

private:
    [[nodiscard]] std::string whole(uint64_t seconds) const;

    bool m_hasHours;
};

/// The seconds that so many bytes take; 0 where the rate is not told.
[[nodiscard]] double secondsOf(const WaveHeader &header, uint64_t bytes);

} // namespace nurv
