// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Cdda2wav.h"

#include "programs/ProgramOutput.h"
#include "text/RegularExpression.h"
#include "text/TextNumbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::cdda2wav {

namespace {

bool isLineEnd(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= 0x0A && code <= 0x0D) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

bool isBlank(QChar character)
{
    return character.isSpace() || isLineEnd(character);
}

/// Of a word and of a summary that no chunk completes as much is kept as the program's own could take, and some more.
constexpr qsizetype kLongestWord = 64;
constexpr qsizetype kLongestSummary = 128;

/// Of a longer line people see the beginning.
constexpr qsizetype kLongestProblem = 300;

const RegularExpression &summaryOfTrack()
{
    static const RegularExpression summary(u"[0-9]+ rderr, [0-9]+ skip, [0-9]+ atom"_s);
    return summary;
}

} // namespace

const ExternalProgram &program()
{
    static const ExternalProgram program{.name = u"cdda2wav"_s,
                                         .package = u"icedax"_s,
                                         .purpose = u"extracts audio CDs"_s,
                                         .versionArguments = {u"-version"_s},
                                         .leavesHalfMadeOutput = true};
    return program;
}

std::optional<TrackRange> trackRange(QStringView text)
{
    const qsizetype plus = text.indexOf(u'+');
    if (plus < 0)
        return std::nullopt;
    const TrackRange range{.first = leadingInteger(text.first(plus)), .last = leadingInteger(text.sliced(plus + 1))};
    if (range.first < 1 || range.last < range.first || range.last > kLastTrack)
        return std::nullopt;
    return range;
}

QString rangeText(const TrackRange &range)
{
    return u"%1+%2"_s.arg(range.first).arg(range.last);
}

QStringList extractionArguments(const QString &range, bool isOneFile, const QString &address)
{
    QStringList arguments;
    if (!isOneFile)
        arguments.append(u"-B"_s);
    return arguments << u"-L"_s << u"1"_s << u"-H"_s << u"-t"_s << range << u"-paranoia"_s << u"-Owav"_s
                     << u"dev="_s + address;
}

QString addressOf(const QStringList &arguments)
{
    return arguments.isEmpty() ? QString() : arguments.last().section(u'=', 1);
}

QString fileName()
{
    return u"audio.wav"_s;
}

QString fileName(int track)
{
    return u"audio_%1.wav"_s.arg(track, 2, 10, QChar(u'0'));
}

QStringList trackFileNames(const TrackRange &range, int track)
{
    return range.isSingle() ? QStringList{fileName(), fileName(track)} : QStringList{fileName(track)};
}

QStringList writtenNames(const TrackRange &range, bool isOneFile)
{
    QStringList names;
    if (isOneFile || range.isSingle())
        names.append(fileName());
    for (int track = range.first; track <= range.last; ++track)
        names.append(fileName(track));
    return names;
}

QString stripPercent(QStringView chunk)
{
    static const RegularExpression percentage(u"[0-9]+%$"_s);
    const QString text = percentage.replaceAll(chunk, QString());
    QStringView rest(text);
    while (!rest.isEmpty() && isLineEnd(rest.front()))
        rest = rest.sliced(1);
    while (!rest.isEmpty() && isLineEnd(rest.back()))
        rest.chop(1);
    return rest.toString();
}

QStringList percentages(QStringView chunk)
{
    QStringList found;
    qsizetype begin = 0;
    for (qsizetype place = 0; place <= chunk.size(); ++place) {
        if (place < chunk.size() && !isBlank(chunk[place]))
            continue;
        const QStringView word = chunk.sliced(begin, place - begin);
        if (const qsizetype sign = word.indexOf(u'%'); sign >= 0)
            found.append(word.first(sign).toString());
        begin = place + 1;
    }
    return found;
}

bool isEndOfTrack(QStringView text)
{
    return summaryOfTrack().findFirst(text).has_value();
}

OutputReader::Reading OutputReader::read(QStringView chunk)
{
    Reading reading;
    const QString words = m_word + chunk.toString();
    reading.percentages = cdda2wav::percentages(words);
    const auto blank = std::find_if(words.rbegin(), words.rend(), isBlank);
    const QString word = words.last(std::distance(words.rbegin(), blank));
    m_word = word.contains(u'%') ? QString() : word.right(kLongestWord);

    const QString text = m_summary + chunk.toString();
    qsizetype end = 0;
    for (const RegularExpressionMatch &match : summaryOfTrack().findAll(text)) {
        ++reading.endedTracks;
        end = match.end();
    }
    m_summary = text.sliced(end).right(kLongestSummary);
    return reading;
}

QString lastLine(QStringView output)
{
    const QStringList lines = programOutput::asOnATerminal(output).split(u'\n');
    const auto told = std::find_if(lines.rbegin(), lines.rend(), [](const QString &line) {
        return !line.trimmed().isEmpty() && !line.trimmed().endsWith(u'%');
    });
    return told == lines.rend() ? QString() : told->trimmed().left(kLongestProblem);
}

QString logText(const QString &output)
{
    return output.sliced(std::max<qsizetype>(output.indexOf(u"cdda2wav:"_s), 0));
}

} // namespace nurv::cdda2wav
