// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ColumnWidth.h"

#include <QList>

#include <unicode/uchar.h>

namespace nurv {

namespace {

constexpr char16_t kEllipsis = u'…';

int characterWidth(char32_t character)
{
    const auto point = static_cast<UChar32>(character);
    switch (u_charType(point)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR: return 0;
    default: break;
    }
    const int eastAsianWidth = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
    return eastAsianWidth == U_EA_WIDE || eastAsianWidth == U_EA_FULLWIDTH ? 2 : 1;
}

/// The most characters from the front that fit into `columns`.
QString frontPart(const QList<char32_t> &characters, int columns)
{
    qsizetype count = 0;
    for (int width = 0; count < characters.size(); ++count) {
        width += characterWidth(characters[count]);
        if (width > columns)
            break;
    }
    return QString::fromUcs4(characters.constData(), count);
}

QString backPart(const QList<char32_t> &characters, int columns)
{
    qsizetype first = characters.size();
    int width = 0;
    while (first > 0 && width + characterWidth(characters[first - 1]) <= columns)
        width += characterWidth(characters[--first]);
    // A combining mark must not attach itself to the ellipsis.
    while (first < characters.size() && characterWidth(characters[first]) == 0)
        ++first;
    return QString::fromUcs4(characters.constData() + first, characters.size() - first);
}

QList<char32_t> charactersOf(const QString &text)
{
    const QList<uint> points = text.toUcs4();
    return {points.begin(), points.end()};
}

} // namespace

int displayWidth(const QString &text)
{
    int width = 0;
    for (const char32_t character : charactersOf(text))
        width += characterWidth(character);
    return width;
}

QString elideMiddle(const QString &text, int columns)
{
    if (columns <= 0)
        return {};
    if (displayWidth(text) <= columns)
        return text;
    const QList<char32_t> characters = charactersOf(text);
    const int back = (columns - 1) / 2;
    return frontPart(characters, columns - 1 - back) + kEllipsis + backPart(characters, back);
}

QString elideEnd(const QString &text, int columns)
{
    if (columns <= 0)
        return {};
    if (displayWidth(text) <= columns)
        return text;
    return frontPart(charactersOf(text), columns - 1) + kEllipsis;
}

} // namespace nurv
