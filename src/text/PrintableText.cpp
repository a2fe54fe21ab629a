// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/PrintableText.h"

#include "text/VisibleText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool isObeyed(QChar character)
{
    return isObeyedCharacter(character.unicode());
}

} // namespace

QString printableLine(const QString &text)
{
    QString line = text;
    line.replace(u'\n', u' ').replace(u'\r', u' ').replace(u'\t', u' ');
    return printableText(line);
}

QString printableText(const QString &text)
{
    // The characters in question are all of the first plane, and there are hardly ever any.
    if (std::none_of(text.begin(), text.end(), isObeyed))
        return text;
    return QString::fromStdString(visibleText(text.toStdString()));
}

QString printableJson(const QByteArray &json)
{
    QString printable;
    const QString text = QString::fromUtf8(json);
    printable.reserve(text.size());
    // Outside of strings there are none of them but line ends.
    for (const QChar character : text) {
        if (character != u'\n' && isObeyed(character))
            printable += u"\\u%1"_s.arg(uint{character.unicode()}, 4, 16, QChar(u'0'));
        else
            printable += character;
    }
    return printable;
}

} // namespace nurv
