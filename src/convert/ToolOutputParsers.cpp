// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ToolOutputParsers.h"

#include "platform/TextNumbers.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::toolOutput {

namespace {

constexpr QStringView kToWav = u"Decoding to WAV: ";

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

/// The text from the first digit on; empty without one.
QStringView fromFirstDigit(QStringView text)
{
    const auto digit =
        std::find_if(text.begin(), text.end(), [](QChar character) { return character >= u'0' && character <= u'9'; });
    return text.sliced(digit - text.begin());
}

/// "label: 45.000000%" for the figure at the start of the text before the first "%".
void showFigure(ChunkReport &report, QStringView text, const QString &label)
{
    const double percent = leadingNumber(before(text, u"%"));
    report.progress = percent;
    report.status = label + sixDecimals(percent) + u'%';
}

ChunkReport parseFlacDecodingAs(QStringView chunk, const QString &label)
{
    const QString line = trimWhitespaceAndNewlines(trimBackspaces(chunk));
    ChunkReport report{.status = {}, .progress = {}, .results = line, .repaintsTitle = true};
    if (line.contains(u"% "_s))
        showFigure(report, line.contains(u": "_s) ? secondPiece(line, u": ") : QStringView(line), label);
    return report;
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
    ChunkReport report{.status = {}, .progress = {}, .results = line, .repaintsTitle = true};
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
    report.progress = leadingNumber(percent);
    return report;
}

ChunkReport parseFlacDecoding(QStringView chunk)
{
    return parseFlacDecodingAs(chunk, u"Decoding Flac: "_s);
}

ChunkReport parseShortenEncoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = shntoolResults(text), .repaintsTitle = true};
    if (text.contains(u'%'))
        showFigure(report, text, u"Encoding to SHN: "_s);
    return report;
}

ChunkReport parseFlacByShntool(QStringView chunk, const QString &type)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = shntoolResults(text), .repaintsTitle = true};
    if (text.contains(u'%')) {
        const QStringView percent = before(text, u"%");
        report.progress = leadingNumber(percent);
        report.status = u"Encoding %1 to Flac: %2%"_s.arg(type, percent);
    }
    return report;
}

ChunkReport parseShortenDecoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text, .repaintsTitle = true};
    if (text.contains(u'%'))
        showFigure(report, text, u"Decoding SHN: "_s);
    return report;
}

ChunkReport parseWavpackEncoding(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text};
    if (text.contains(u"% done..."_s))
        showFigure(report, text, u"Encoding to Wavpack: "_s);
    return report;
}

ChunkReport parseWavpackDecoding(QStringView chunk, const QString &label)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text + text};
    if (text.contains(u"% done..."_s))
        showFigure(report, text, label);
    return report;
}

bool wavpackTellsOfError(QStringView text)
{
    return text.contains(u"couldn't read all samples, file may be corrupt!!"_s) || asksToOverwrite(text);
}

bool asksToOverwrite(QStringView text)
{
    return text.contains(u"overwrite"_s) && text.contains(u"(yes/no/all)?"_s);
}

ChunkReport parseTta(QStringView chunk, const QString &label)
{
    static const QString marker = u"Percent Progress: "_s;
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = text + text};
    if (const qsizetype place = text.indexOf(marker); place >= 0)
        showFigure(report, QStringView(text).sliced(place + marker.size()), label);
    return report;
}

ChunkReport parseMonkeysAudio(QStringView chunk, const QString &label)
{
    ChunkReport report{.status = {}, .progress = {}, .results = chunk.toString()};
    if (!chunk.contains(u"Progress: "_s) || !chunk.contains(u'%') || !chunk.contains(u"seconds remaining, "_s))
        return report;
    const QStringView figure = fromFirstDigit(chunk);
    const QStringView percent = before(figure, u"%");
    const qsizetype bracket = figure.indexOf(u" (", percent.size());
    const QStringView rest = bracket < 0 ? QStringView() : fromFirstDigit(figure.sliced(bracket));
    const QStringView seconds = before(rest, u" seconds remaining");
    report.progress = leadingNumber(percent);
    report.status = u"%1: %2%   %3 seconds remaining"_s.arg(label, percent, seconds);
    return report;
}

bool monkeysAudioTellsOfError(QStringView text)
{
    return text.contains(u"Error: 10"_s) || text.contains(u"Error: 2000"_s);
}

ChunkReport parseShortenToWav(QStringView chunk)
{
    const QString text = trimBackspaces(chunk);
    ChunkReport report{.status = {}, .progress = {}, .results = shntoolResults(text)};
    if (text.contains(u'%')) {
        showFigure(report, text, kToWav.toString());
    } else {
        report.progress = -1.0;
        report.status = kToWav.toString() + sixDecimals(-1.0) + u'%';
    }
    return report;
}

ChunkReport parseFlacToWav(QStringView chunk)
{
    return parseFlacDecodingAs(chunk, kToWav.toString());
}

ChunkReport parseMonkeysAudioToWav(QStringView chunk)
{
    ChunkReport report = parseMonkeysAudio(chunk, u"Decoding to WAV"_s);
    report.results.clear();
    report.repaintsTitle = true;
    return report;
}

ChunkReport parseWavpackToWav(QStringView chunk)
{
    return parseWavpackDecoding(chunk, kToWav.toString());
}

} // namespace nurv::toolOutput
