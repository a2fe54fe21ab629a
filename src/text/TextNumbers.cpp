// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/TextNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace nurv {

namespace {

constexpr QChar kBackspace(u'\b');

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

qsizetype skipBlanks(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size() && text[at].isSpace())
        ++at;
    return at;
}

struct Sign {
    bool negative = false;
    qsizetype next = 0;
};

Sign readSign(QStringView text, qsizetype at)
{
    if (at < text.size() && (text[at] == u'-' || text[at] == u'+'))
        return {text[at] == u'-', at + 1};
    return {false, at};
}

} // namespace

std::int64_t leadingInteger64(QStringView text)
{
    constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
    const Sign sign = readSign(text, skipBlanks(text));
    // Counted downwards: the negative range is the larger one.
    std::int64_t negated = 0;
    for (qsizetype at = sign.next; at < text.size() && isDigit(text[at]); ++at) {
        const int digit = text[at].unicode() - u'0';
        if (negated < (kMin + digit) / 10)
            return sign.negative ? kMin : kMax;
        negated = negated * 10 - digit;
    }
    if (sign.negative)
        return negated;
    return negated == kMin ? kMax : -negated;
}

int leadingInteger(QStringView text)
{
    return static_cast<int>(std::clamp<std::int64_t>(leadingInteger64(text),
                                                     std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

double leadingNumber(QStringView text)
{
    const Sign sign = readSign(text, skipBlanks(text));
    std::string decimal;
    bool hasWholePart = false;
    bool hasDigits = false;
    bool pointSeen = false;
    for (qsizetype at = sign.next; at < text.size(); ++at) {
        const QChar c = text[at];
        if (isDigit(c)) {
            hasDigits = true;
            hasWholePart = hasWholePart || (!pointSeen && c != u'0');
        } else if (c == u'.' && !pointSeen) {
            pointSeen = true;
        } else {
            break;
        }
        decimal.push_back(static_cast<char>(c.unicode()));
    }
    if (!hasDigits)
        return 0.0;
    double value = 0.0;
    const auto result = std::from_chars(decimal.data(), decimal.data() + decimal.size(), value,
                                        std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range)
        value = hasWholePart ? std::numeric_limits<double>::max() : 0.0;
    return sign.negative ? -value : value;
}

QString trimBackspaces(QStringView text)
{
    while (text.startsWith(kBackspace))
        text = text.sliced(1);
    while (text.endsWith(kBackspace))
        text.chop(1);
    return text.toString();
}

QString trimWhitespaceAndNewlines(QStringView text)
{
    return text.trimmed().toString();
}

QString sixDecimals(double number)
{
    // The largest double has 309 digits before its point.
    std::array<char, 330> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                      std::chars_format::fixed, 6);
    return QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
}

} // namespace nurv
