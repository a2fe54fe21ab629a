// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/LengthValue.h"

#include "shntool/RunMessages.h"
#include "shntool/WaveInfo.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <string_view>

namespace nurv {

namespace {

constexpr size_t kMostDigits = 15; ///< of bytes; 8 of minutes stay below that
constexpr size_t kMostMinuteDigits = 8;

bool isNumber(std::string_view text)
{
    return !text.empty() && std::ranges::all_of(text, [](char letter) { return letter >= '0' && letter <= '9'; });
}

uint64_t numberOf(std::string_view digits)
{
    uint64_t number = 0;
    for (const char digit : digits)
        number = number * 10 + static_cast<uint64_t>(digit - '0');
    return number;
}

[[noreturn]] void failFormat(const std::string &text)
{
    throw LengthValue::Fault{"value not in bytes, m:ss, m:ss.ff, or m:ss.nnn format: [" + text + "]"};
}

uint64_t toNearestSector(uint64_t offset, const std::string &time, const RunMessages &messages)
{
    uint64_t sectors = (offset + kSectorBytes / 2) / kSectorBytes;
    if (sectors == 0 && offset > 0) {
        messages.warn("closest sector boundary to " + time
                     + " is the beginning of the file -- rounding up to first sector boundary");
        sectors = 1;
    }
    if (sectors * kSectorBytes != offset) {
        messages.warn("rounding " + time + " (offset: " + std::to_string(offset)
                     + ") to nearest sector boundary (offset: " + std::to_string(sectors * kSectorBytes) + ")");
    }
    return sectors * kSectorBytes;
}

} // namespace

LengthValue LengthValue::parse(const std::string &text)
{
    LengthValue value;
    if (isNumber(text) && text.size() <= kMostDigits) {
        value.bytes = numberOf(text);
        return value;
    }
    const std::string_view view = text;
    const size_t colon = view.find(':');
    if (colon == std::string_view::npos || !isNumber(view.substr(0, colon)) || colon > kMostMinuteDigits)
        failFormat(text);
    const std::string_view rest = view.substr(colon + 1);
    const std::string_view seconds = rest.substr(0, 2);
    const std::string_view parts = rest.size() > 3 && rest[2] == '.' ? rest.substr(3) : std::string_view();
    const bool isKnown = rest.size() == 2 || (isNumber(parts) && (parts.size() == 2 || parts.size() == 3));
    if (seconds.size() != 2 || !isNumber(seconds) || !isKnown)
        failFormat(text);
    value.minutes = numberOf(view.substr(0, colon));
    value.seconds = numberOf(seconds);
    value.parts = numberOf(parts);
    value.unit = parts.empty() ? Unit::Seconds : parts.size() == 2 ? Unit::Frames : Unit::Milliseconds;
    if (value.seconds >= 60)
        throw Fault{"invalid value for seconds: [" + std::to_string(value.seconds) + "]"};
    if (value.unit == Unit::Frames && value.parts >= kSectorsPerSecond)
        throw Fault{"invalid value for frames: [" + std::to_string(value.parts) + "]"};
    return value;
}

uint64_t LengthValue::inBytes(const WaveHeader &header, const RunMessages &messages) const
{
    if (unit == Unit::Bytes)
        return bytes;
    const bool isCd = header.isCdQuality();
    const uint64_t rate = isCd ? kCdBytesPerSecond : header.calculatedRate();
    const uint64_t wholeSeconds = (minutes * 60 + seconds) * rate;
    const uint64_t block = std::max<uint64_t>(header.blockAlign, 1);
    if (unit == Unit::Seconds)
        return wholeSeconds;
    if (unit == Unit::Frames)
        return (wholeSeconds + parts * rate / kSectorsPerSecond) / (isCd ? 1 : block) * (isCd ? 1 : block);
    const uint64_t offset = wholeSeconds + (parts * rate + 500) / 1000;
    if (!isCd)
        return offset / block * block;
    std::array<char, 48> time{};
    std::snprintf(time.data(), time.size(), "%" PRIu64 ":%02" PRIu64 ".%03" PRIu64, minutes, seconds, parts);
    return toNearestSector(offset, time.data(), messages);
}

LengthValue parseLength(const std::string &text, const RunMessages &messages)
{
    try {
        return LengthValue::parse(text);
    } catch (const LengthValue::Fault &fault) {
        messages.fail(fault.text);
    }
}

} // namespace nurv
