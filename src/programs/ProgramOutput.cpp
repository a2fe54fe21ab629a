// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/ProgramOutput.h"

#include "text/TextNumbers.h"

#include <QList>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv::programOutput {

namespace {

constexpr QChar kEscape = u'\x1b';

/// The length of the escape sequence that the text begins with: "\e[", parameters and a letter, or
/// as much of it as there is.
qsizetype escapeLength(QStringView text)
{
    if (text.size() < 2 || text[1] != u'[')
        return 1;
    qsizetype length = 2;
    while (length < text.size() && text[length] >= u' ' && text[length] <= u'?')
        ++length;
    return std::min(length + 1, text.size());
}

} // namespace

QString asOnATerminal(QStringView text)
{
    QString lines;
    qsizetype lineBegin = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const bool endsLine = i + 1 < text.size() && text[i + 1] == u'\n';
        if (character == kEscape) {
            const QStringView sequence = text.sliced(i, escapeLength(text.sliced(i)));
            if (sequence == u"\x1b[A" && lineBegin > 0) {
                lines.truncate(lineBegin - 1);
                lineBegin = lines.lastIndexOf(u'\n') + 1;
            }
            i += sequence.size() - 1;
        } else if (character == u'\b') {
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

QStringView before(QStringView text, QStringView marker)
{
    const qsizetype place = text.indexOf(marker);
    return place < 0 ? text : text.first(place);
}

QStringView secondPiece(QStringView text, QStringView marker)
{
    return before(text.sliced(text.indexOf(marker) + marker.size()), marker);
}

QStringView fromFirstDigit(QStringView text)
{
    const auto digit =
        std::find_if(text.begin(), text.end(), [](QChar character) { return character >= u'0' && character <= u'9'; });
    return text.sliced(digit - text.begin());
}

void showFigure(ChunkReport &report, QStringView text, const QString &label)
{
    const double percent = leadingNumber(before(text, u"%"));
    report.progress = percent;
    report.status = label + sixDecimals(percent) + u'%';
}

QString lastMessage(QStringView text, const QString &name)
{
    const QString prefix = name + u": "_s;
    QString message;
    for (const QStringView line : text.split(u'\n')) {
        if (line.startsWith(prefix))
            message = trimWhitespaceAndNewlines(line.sliced(prefix.size()));
    }
    return message;
}

std::function<ChunkReport(const QString &)> labelled(ChunkReport (*parse)(QStringView chunk, const QString &label),
                                                     const QString &label)
{
    return [parse, label](const QString &chunk) { return parse(chunk, label); };
}

std::function<ChunkReport(const QString &)> inSteps(std::function<ChunkReport(const QString &)> parse)
{
    return [parse = std::move(parse), shown = 0.0](const QString &chunk) mutable {
        ChunkReport report = parse(chunk);
        if (report.progress && *report.progress >= shown + 1.0) {
            shown = *report.progress;
        } else {
            report.progress.reset();
            report.status.reset();
        }
        return report;
    };
}

} // namespace nurv::programOutput
