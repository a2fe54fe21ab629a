// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/Utf8Text.h"

#include <QStringDecoder>

#include <algorithm>

namespace nurv {

namespace {

// The well-formed byte sequences of the Unicode Standard, table 3-7: the first
// byte fixes the length and the range of the second byte.
struct Lead {
    qsizetype length = 0;
    unsigned char secondFrom = 0x80;
    unsigned char secondTo = 0xBF;
};

Lead leadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {1};
    if (byte < 0xC2 || byte > 0xF4)
        return {0};
    if (byte < 0xE0)
        return {2};
    if (byte < 0xF0)
        return {3, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    return {4, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
}

unsigned char byteAt(const QByteArray &bytes, qsizetype at)
{
    return static_cast<unsigned char>(bytes.at(at));
}

// How many of the bytes from `offset` on are the beginning of one sequence.
qsizetype wellFormedBytes(const QByteArray &bytes, qsizetype offset, const Lead &lead)
{
    const qsizetype available = std::min(lead.length, bytes.size() - offset);
    qsizetype count = std::min<qsizetype>(available, 1);
    for (; count < available; ++count) {
        const unsigned char byte = byteAt(bytes, offset + count);
        const unsigned char from = count == 1 ? lead.secondFrom : 0x80;
        const unsigned char to = count == 1 ? lead.secondTo : 0xBF;
        if (byte < from || byte > to)
            break;
    }
    return count;
}

} // namespace

std::optional<QString> fromStrictUtf8(const QByteArray &bytes)
{
    if (!bytes.isValidUtf8())
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return QString(decoder(bytes));
}

qsizetype cutSequenceLength(const QByteArray &bytes)
{
    for (qsizetype length = 1; length <= std::min<qsizetype>(3, bytes.size()); ++length) {
        const qsizetype start = bytes.size() - length;
        const Lead lead = leadOf(byteAt(bytes, start));
        if (lead.length > length && wellFormedBytes(bytes, start, lead) == length)
            return length;
    }
    return 0;
}

qsizetype sequenceLengthAt(const QByteArray &bytes, qsizetype offset)
{
    const Lead lead = leadOf(byteAt(bytes, offset));
    return lead.length > 0 && wellFormedBytes(bytes, offset, lead) == lead.length ? lead.length : 0;
}

} // namespace nurv
