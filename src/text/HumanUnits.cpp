// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/HumanUnits.h"

#include <array>
#include <cmath>
#include <cstddef>

using namespace Qt::StringLiterals;

namespace nurv {

QString sizeText(qint64 bytes)
{
    constexpr qint64 kStep = 1000;
    static const std::array units{u"kB"_s, u"MB"_s, u"GB"_s, u"TB"_s, u"PB"_s, u"EB"_s};
    if (bytes < kStep)
        return bytes == 1 ? u"1 byte"_s : u"%1 bytes"_s.arg(bytes);
    double size = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    // What would be rounded to 1000 is one of the next unit.
    while (std::round(size) >= kStep && unit + 1 < units.size()) {
        size /= kStep;
        ++unit;
    }
    const bool hasOneDigit = std::round(size * 10) < 100;
    return QString::number(size, 'f', hasOneDigit ? 1 : 0) + u' ' + units.at(unit);
}

QString durationText(std::chrono::milliseconds duration)
{
    using namespace std::chrono;
    const auto seconds = round<std::chrono::seconds>(duration).count();
    if (duration < 1s)
        return u"under 1 s"_s;
    if (seconds < 60)
        return u"%1 s"_s.arg(seconds);
    if (seconds < 3600)
        return u"%1 min %2 s"_s.arg(seconds / 60).arg(seconds % 60);
    return u"%1 h %2 min"_s.arg(seconds / 3600).arg(seconds % 3600 / 60);
}

QString aboutDurationText(std::chrono::milliseconds duration)
{
    using namespace std::chrono;
    if (round<std::chrono::seconds>(duration) < 60s)
        return durationText(duration);
    const auto whole = round<std::chrono::minutes>(duration);
    return whole < 60min ? u"%1 min"_s.arg(whole.count()) : durationText(whole);
}

} // namespace nurv
