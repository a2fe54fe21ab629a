// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ToolOutputParsers.h"

#include "platform/TextNumbers.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::toolOutput {

namespace {

QStringView before(QStringView text, QStringView marker)
{
    const qsizetype place = text.indexOf(marker);
    return place < 0 ? text : text.first(place);
}

/// The text between the first and the second `marker`; what follows the first one
/// when there is no second.
QStringView secondPiece(QStringView text, QStringView marker)
{
    return before(text.sliced(text.indexOf(marker) + marker.size()), marker);
}

/// What the progress bar shows for a figure: a chunk can begin in the middle of
/// other digits.
double onTheBar(double figure)
{
    return std::clamp(figure, 0.0, 100.0);
}

/// "ratio=0.532" from the first "ratio=" on; empty without one.
QStringView ratioIn(QStringView line)
{
    const qsizetype place = line.indexOf(u"ratio="_s);
    return place < 0 ? QStringView() : line.sliced(place);
}

/// Cuts off a second progress figure that follows the ratio within one chunk, with
/// the two places of its digits.
QStringView withoutSecondFigure(QStringView ratio)
{
    const qsizetype percent = ratio.indexOf(u'%');
    return percent < 0 ? ratio : ratio.first(std::max<qsizetype>(percent - 2, 0));
}

/// What every conversion by shntool to a compressed format reports.
QString shntoolResults(QStringView text)
{
    QString results;
    if (text.contains(u"Converting"_s))
        results += before(text, u": ");
    if (text.contains(u"ERROR"_s) || text.contains(u"OK"_s))
        results += text;
    results += text;
    return results;
}

} // namespace

bool tellsOfDamage(QStringView text)
{
    static const QStringList markers{u"*** Got error code"_s, u"MD5 signature mismatch"_s, u"unexpected EOF"_s};
    return std::any_of(markers.begin(), markers.end(), [&](const QString &marker) { return text.contains(marker); });
}

QString asOnATerminal(QStringView text)
{
    QString lines;
    qsizetype lineBegin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const bool endsLine = i + 1 < text.size() && text[i + 1] == u'\n';
        if (character == u'\b') {
            lines.truncate(std::max(lineBegin, lines.size() - 1));
        } else if (character == u'\r') {
            if (!endsLine)
                lines.truncate(lineBegin);
        } else {
            lines += character;
            if (character == u'\n')
                lineBegin = lines.size();
        }
    }
    return lines;
}

ChunkReport parseFlacEncoding(QStringView chunk)
{
    const QString line = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    ChunkReport report{.status = {}, .progress = {}, .results = line};
    if (!line.contains(u'%'))
        return report;
    QStringView percent;
    QStringView ratio = ratioIn(line);
    if (line.contains(u": "_s)) {
        percent = before(secondPiece(line, u": "), u"%");
    } else {
        percent = before(line, u"%");
        ratio = withoutSecondFigure(ratio);
    }
    if (percent.isEmpty())
        return report;
    report.status = u"Encoding to Flac: %1% %2"_s.arg(percent, ratio);
    report.progress = onTheBar(leadingNumber(percent));
    return report;
}

ChunkReport parseFlacDecoding(QStringView chunk)
{
    const QString line = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    ChunkReport report{.status = {}, .progress = {}, .results = line};
    if (!line.contains(u"% "_s))
        return report;
    const QStringView figure = line.contains(u": "_s) ? secondPiece(line, u": ") : QStringView(line);
    const double percent = leadingNumber(before(figure, u"%"));
    report.progress = onTheBar(percent);
    report.status = u"Decoding Flac: "_s + sixDecimals(percent) + u'%';
    return report;
}

ChunkReport parseShortenEncoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = shntoolResults(text)};
    if (text.contains(u'%')) {
        const double percent = leadingNumber(before(text, u"%"));
        report.progress = onTheBar(percent);
        report.status = u"Encoding to SHN: "_s + sixDecimals(percent) + u'%';
    }
    return report;
}

ChunkReport parseFlacByShntool(QStringView chunk, const QString &type)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = shntoolResults(text)};
    if (text.contains(u'%')) {
        const QStringView percent = before(text, u"%");
        report.progress = onTheBar(leadingNumber(percent));
        report.status = u"Encoding %1 to Flac: %2%"_s.arg(type, percent);
    }
    return report;
}

ChunkReport parseShortenDecoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text};
    if (text.contains(u'%')) {
        const double percent = leadingNumber(before(text, u"%"));
        report.progress = onTheBar(percent);
        report.status = u"Decoding SHN: "_s + sixDecimals(percent) + u'%';
    }
    return report;
}

} // namespace nurv::toolOutput
