// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TestOutput.h"

#include "text/TextNumbers.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace nurv::testOutput {

namespace {

constexpr double kUnknown = -1.0;
constexpr double kWhole = 100.0;

/// The place of the last line that contains the marker; -1 without one.
qsizetype lastLineWith(const QStringList &lines, QStringView marker)
{
    qsizetype place = lines.size() - 1;
    while (place >= 0 && !lines.at(place).contains(marker))
        --place;
    return place;
}

QString okLines(const QString &name)
{
    return wholeLine(name) + u"%1: ok\n"_s.arg(name);
}

QString withoutFigure(const QString &text, const QString &name)
{
    return text.endsWith(u"ok"_s) ? okLines(name) : u"%1: %2\n"_s.arg(name, text);
}

} // namespace

QString wholeLine(const QString &name)
{
    return u"%1: testing, 100% complete\n"_s.arg(name);
}

QString tailOf(const QString &log)
{
    const QStringList lines = log.split(u'\n');
    const qsizetype first = lastLineWith(lines, u"% complete");
    return first < 0 ? u'\n' + log : lines.sliced(first).join(u'\n');
}

FlacChunk parseFlac(QStringView chunk, const QString &name)
{
    const QString text = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    if (!text.contains(u'%'))
        return {.lines = withoutFigure(text, name)};
    const QStringList pieces = text.split(u"testing, "_s);
    if (pieces.size() % 2 != 0)
        return {.progress = kUnknown, .hasProgress = true, .lines = withoutFigure(text, name)};
    FlacChunk found{.hasProgress = true};
    for (const QString &piece : pieces) {
        if (piece.endsWith(u"ok"_s)) {
            found.lines += okLines(name);
            found.progress = kWhole;
            break;
        }
        found.progress = leadingNumber(piece);
        found.lines += u"%1: testing, %2% complete\n"_s.arg(name, sixDecimals(found.progress));
    }
    return found;
}

QString tailOfMac(const QString &log, const QString &title)
{
    const QStringList lines = log.split(u'\n');
    const qsizetype first = lastLineWith(lines, u"Progress: ");
    QString tail = first < 0 ? QString() : title + u'\n';
    for (const QString &line : lines.sliced(first < 0 ? 0 : first))
        tail += line + u'\n';
    return tail;
}

} // namespace nurv::testOutput
