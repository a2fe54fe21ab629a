// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/JournalLine.h"

#include <algorithm>
#include <array>

#include <zlib.h>

namespace nurv {

namespace {

constexpr qsizetype kChecksumDigits = 8;
constexpr std::array kDigits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};

/// Characters that a line or its parser would take for something else.
bool mustBeEscaped(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte <= 0x20 || byte == 0x7F || character == '%';
}

void appendEscaped(QByteArray &line, QByteArrayView word)
{
    // An empty word would leave no trace of itself.
    if (word.isEmpty())
        line += "%";
    for (qsizetype from = 0; from < word.size();) {
        const char *const end = std::find_if(word.begin() + from, word.end(), mustBeEscaped);
        line += word.sliced(from, end - word.begin() - from);
        from = end - word.begin();
        if (from == word.size())
            break;
        const auto byte = static_cast<unsigned char>(word[from++]);
        line += '%';
        line += kDigits[byte >> 4];
        line += kDigits[byte & 15];
    }
}

std::optional<unsigned> valueOf(char digit)
{
    const auto found = std::find(kDigits.begin(), kDigits.end(), digit);
    return found == kDigits.end() ? std::nullopt : std::optional(static_cast<unsigned>(found - kDigits.begin()));
}

std::optional<QByteArray> unescaped(QByteArrayView word)
{
    QByteArray bytes;
    if (word == "%")
        return bytes;
    bytes.reserve(word.size());
    for (qsizetype at = 0; at < word.size(); ++at) {
        if (word[at] != '%') {
            bytes += word[at];
            continue;
        }
        if (at + 2 >= word.size())
            return std::nullopt;
        const std::optional<unsigned> high = valueOf(word[at + 1]);
        const std::optional<unsigned> low = valueOf(word[at + 2]);
        if (!high || !low)
            return std::nullopt;
        bytes += static_cast<char>(*high << 4 | *low);
        at += 2;
    }
    return bytes;
}

void appendChecksum(QByteArray &line, QByteArrayView words)
{
    const uLong sum = ::crc32_z(0, reinterpret_cast<const Bytef *>(words.data()), static_cast<z_size_t>(words.size()));
    for (int shift = 28; shift >= 0; shift -= 4)
        line += kDigits[(sum >> shift) & 15];
}

} // namespace

QByteArray journalLine(std::initializer_list<QByteArrayView> words)
{
    QByteArray line;
    for (const QByteArrayView word : words) {
        appendEscaped(line, word);
        line += ' ';
    }
    appendChecksum(line, QByteArrayView(line).chopped(1));
    line += '\n';
    return line;
}

std::optional<QList<QByteArray>> journalWords(QByteArrayView line)
{
    const qsizetype end = line.size() - kChecksumDigits - 1;
    if (end <= 0 || line[end] != ' ')
        return std::nullopt;
    const QByteArrayView text = line.first(end);
    QByteArray checksum;
    appendChecksum(checksum, text);
    if (line.last(kChecksumDigits) != checksum)
        return std::nullopt;
    QList<QByteArray> words;
    for (qsizetype from = 0; from <= text.size();) {
        qsizetype to = from;
        while (to < text.size() && text[to] != ' ')
            ++to;
        const std::optional<QByteArray> word = unescaped(text.sliced(from, to - from));
        if (!word)
            return std::nullopt;
        words.append(*word);
        from = to + 1;
    }
    return words;
}

} // namespace nurv
