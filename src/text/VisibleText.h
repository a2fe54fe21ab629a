// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nurv {

/// Whether a terminal does something at the character in place of showing it, or shows
/// others in another order because of it: C0, DEL, C1, the line and paragraph separator,
/// and the characters of the Unicode property Bidi_Control.
[[nodiscard]] constexpr bool isObeyedCharacter(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x061C || character == 0x200E
           || character == 0x200F || (character >= 0x2028 && character <= 0x202E)
           || (character >= 0x2066 && character <= 0x2069);
}

/// One character of UTF-8. `length` is 0 where the bytes are no valid sequence.
struct Utf8Character {
    char32_t code = 0;
    std::size_t length = 0;
};

/// The first character of `bytes`, which are not empty (RFC 3629).
[[nodiscard]] constexpr Utf8Character firstUtf8Character(std::string_view bytes)
{
    const auto lead = static_cast<unsigned char>(bytes.front());
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || bytes.size() < length)
        return {};
    char32_t code = lead & (0x7FU >> length);
    for (const char byte : bytes.substr(1, length - 1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0U) != 0x80)
            return {};
        code = code << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    const bool isTooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    return isTooLong || isSurrogate || code > 0x10FFFF ? Utf8Character{} : Utf8Character{code, length};
}

/// The number in capital hexadecimal digits, at least `digits` of them.
[[nodiscard]] inline std::string hexadecimal(char32_t number, std::size_t digits)
{
    std::string text;
    for (; number != 0 || text.size() < digits; number >>= 4)
        text.insert(text.begin(), "0123456789ABCDEF"[number & 0xFU]);
    return text;
}

/// A name or a program's text for people: line ends and tabs stay, bytes that are no UTF-8 and
/// control characters of ASCII are shown as "\xNN", others that a terminal would obey as
/// "\u{NNNN}". The result is valid UTF-8.
[[nodiscard]] inline std::string visibleText(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character next = firstUtf8Character(text);
        const std::size_t length = next.length == 0 ? 1 : next.length;
        if (next.length == 0)
            shown += "\\x" + hexadecimal(static_cast<unsigned char>(text.front()), 2);
        else if (next.code == U'\n' || next.code == U'\t' || !isObeyedCharacter(next.code))
            shown += text.substr(0, length);
        else if (next.code < 0x80)
            shown += "\\x" + hexadecimal(next.code, 2);
        else
            shown += "\\u{" + hexadecimal(next.code, 4) + '}';
        text.remove_prefix(length);
    }
    return shown;
}

} // namespace nurv
