// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/NumberFormat.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace nurv {

namespace {

constexpr std::string_view kFlags = "-+ #0";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kKinds = "diuxXo";
constexpr size_t kMostDigits = 2;

/// The length of the conversion that begins behind a percent sign; 0 where it is none for a number.
size_t conversionLength(std::string_view text)
{
    size_t at = std::min(text.find_first_not_of(kFlags), text.size());
    const auto passDigits = [&] {
        const size_t end = std::min(text.find_first_not_of(kDigits, at), text.size());
        const bool isShort = end - at <= kMostDigits;
        at = end;
        return isShort;
    };
    if (!passDigits())
        return 0;
    if (at < text.size() && text[at] == '.') {
        ++at;
        if (!passDigits())
            return 0;
    }
    return at < text.size() && kKinds.find(text[at]) != std::string_view::npos ? at + 1 : 0;
}

} // namespace

std::optional<std::string> formattedNumber(const std::string &format, int number)
{
    std::string text;
    bool hasNumber = false;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            text += format[i];
            continue;
        }
        if (i + 1 < format.size() && format[i + 1] == '%') {
            text += '%';
            ++i;
            continue;
        }
        const size_t length = conversionLength(std::string_view(format).substr(i + 1));
        if (length == 0 || hasNumber)
            return std::nullopt;
        const std::string conversion = format.substr(i, length + 1);
        std::array<char, 128> digits{};
        // One conversion of an int, with at most two digits of width and of precision.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(digits.data(), digits.size(), conversion.c_str(), number);
#pragma GCC diagnostic pop
        text += digits.data();
        hasNumber = true;
        i += length;
    }
    return text;
}

} // namespace nurv
