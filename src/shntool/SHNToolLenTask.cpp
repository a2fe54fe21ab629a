// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolLenTask.h"

#include "app/PathNames.h"
#include "programs/ShntoolModes.h"
#include "shntool/SHNtoolOutputNamingFormatParser.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// The first number of a line, up to the next blank; a length of less than ten minutes gets a zero in front.
QString timeOf(const QString &line)
{
    const auto digit = std::find_if(line.begin(), line.end(), isDigit);
    QString time = line.sliced(digit - line.begin()).section(u' ', 0, 0);
    if (time.size() > 1 && time.at(1) == u':')
        time.prepend(u'0');
    return time;
}

QString numberOf(qsizetype track)
{
    return QString::number(track).rightJustified(2, u'0');
}

} // namespace

const QString SHNToolLenTask::kNormal = u"normal len output"_s;
const QString SHNToolLenTask::kFileset = u"show len for fileset"_s;
const QString SHNToolLenTask::kByDisc = u"show len by disc*"_s;

SHNToolLenTask::SHNToolLenTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                               const QString &lenType)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_type(lenType)
{
    nameRow(u"Running shntool LEN"_s);
    ownOutcome().isReport = true;
}

SHNToolLenTask::SHNToolLenTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue,
                               const QString &launchPath, const QStringList &arguments, const QString &lenType)
    : SHNToolLenTask(queue, launchPath, arguments, lenType)
{
    setResults(std::move(results));
}

int SHNToolLenTask::sourceCount() const
{
    return static_cast<int>(arguments().size()) - 1;
}

void SHNToolLenTask::startTask()
{
    startIndeterminateProgressBar();
    showStatus(u"Running"_s);
    NURVAsyncNSTask::startTask();
}

void SHNToolLenTask::processTaskOutput(const QString &chunk)
{
    m_output += chunk;
}

/// How many files have a line of their own.
int SHNToolLenTask::toldSources() const
{
    const QStringList lines = m_output.split(u'\n').sliced(1);
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [](const QString &line) {
        return !shntool::isMessage(line) && line.contains(u'/');
    }));
}

void SHNToolLenTask::cleanup()
{
    if (m_type == kNormal)
        appendResultsForSelf(normalSHNLenOutput());
    else if (m_type == kFileset || m_type == kByDisc)
        appendResultsForSelf(lenByFileSetOutput());
    if (!error() || cancelled())
        return;
    // A set list has no place for what the program says of files that it cannot read.
    const QString problems = shntool::problemLines(m_output);
    ownOutcome().problem = shntool::lastProblem(problems.section(u'\n', 0, 0)).withFile();
    ownOutcome().failedSources = sourceCount() - toldSources();
    if (m_type != kNormal && !problems.isEmpty())
        appendResultsForSelf(problems + u'\n');
}

QString SHNToolLenTask::normalSHNLenOutput() const
{
    const QStringList lines = m_output.split(u'\n');
    QString report = lines.first();
    for (const QString &line : lines.sliced(1)) {
        const qsizetype slash = line.indexOf(u'/');
        report += u'\n' + (slash < 0 ? line : line.first(slash) + lastPathComponent(line.sliced(slash)));
    }
    return report;
}

QString SHNToolLenTask::lenByFileSetOutput() const
{
    struct Track {
        QString name;
        QString time;
    };
    std::vector<Track> tracks;
    QString total;
    qsizetype place = 0;
    const QStringList lines = m_output.split(u'\n');
    for (const QString &line : lines.sliced(1)) {
        if (shntool::isMessage(line))
            continue;
        if (const qsizetype slash = line.indexOf(u'/'); slash >= 0) {
            const QString path = line.sliced(slash);
            // A file that cannot be read has no line, and its name is nobody else's.
            const qsizetype argument = arguments().indexOf(path, place + 1);
            place = argument < 0 ? place + 1 : argument;
            const bool isNamed = m_names && place <= m_names->size();
            tracks.push_back({isNamed ? m_names->at(place - 1) : lastPathComponent(path), timeOf(line)});
        } else if (!line.trimmed().isEmpty()) {
            total = timeOf(line);
        }
    }
    const SHNtoolOutputNamingFormatParser parser;
    // A blank of separation behind the longest name.
    const int width = m_maxTrackNameLength + 1;
    QString report = m_discNumber ? u"Disc %1\n\n"_s.arg(*m_discNumber) : QString();
    qsizetype number = 0;
    for (const Track &track : tracks) {
        ++number;
        if (m_names)
            report += parser.getFormattedLineWithName(track.name.leftJustified(width, u' ', true), track.time,
                                                      numberOf(number));
        else
            report += numberOf(number) + u' ' + track.name + u' ' + track.time + u'\n';
    }
    const QString totalLine = parser.getFormattedTotalLine(total);
    return report
           + (m_discNumber ? u"\nDisc %1 Total: %2 \n\n"_s.arg(*m_discNumber, totalLine)
                           : u"\nTotal: %1 \n\n"_s.arg(totalLine));
}

} // namespace nurv
