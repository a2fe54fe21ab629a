// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateST5Task.h"

#include "app/PathNames.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/ListEntries.h"
#include "engine/NURVTaskResults.h"
#include "programs/Shntool.h"
#include "text/TextNumbers.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

void CreateST5Task::startTask()
{
    appendResultsForSelf(checksumList::st5Header(shortVersionString(), QDateTime::currentDateTime()));
    NURVAsyncNSTaskFileOutputRedirection::startTask();
}

void CreateST5Task::processTaskOutput(const QString &chunk)
{
    const QString text = trimBackspaces(chunk);
    for (const QString &line : checksumList::linesOf(text)) {
        if (const qsizetype percent = line.indexOf(u'%'); percent >= 0) {
            const double progress = leadingNumber(QStringView(line).first(percent));
            setTopTextFieldString(u"Creating ST5: %1%"_s.arg(sixDecimals(progress)));
            setProgressIndicatorValue(progress);
            updateStatus();
        }
        if (line.startsWith(u"Hashing ["_s)) {
            QString name = text.sliced(text.indexOf(u'[')).section(u"] ("_s, 0, 0);
            while (name.startsWith(u'['))
                name.remove(0, 1);
            while (name.endsWith(u'['))
                name.chop(1);
            showMainLine(name);
        }
    }
    takeEntries(chunk);
}

/// An entry that is cut by the end of a chunk would be another one.
void CreateST5Task::takeEntries(const QString &chunk)
{
    QStringList lines = checksumList::linesOf(m_unended + chunk);
    m_unended = lines.takeLast();
    for (const QString &ended : lines) {
        const QString line = trimBackspaces(ended);
        // The name of a file may hold the mark, too.
        const qsizetype marker = line.startsWith(u"Hashing ["_s) ? -1 : line.indexOf(checksumList::kSt5Marker);
        if (marker >= 0) {
            const qsizetype name = marker + checksumList::kSt5Marker.size();
            m_listed.append(shntool::hashedName(line.sliced(name)));
            appendResultsForSelf(u'\n' + line.first(name) + m_listed.last());
        } else if (line.contains(u" warning: "_s) || line.contains(u" error: "_s)) {
            m_complaints += line + u'\n';
        }
    }
}

void CreateST5Task::couldNotWrite(const QString &problem)
{
    NURVAsyncNSTaskFileOutputRedirection::couldNotWrite(problem);
    tellProblem(problem);
}

/// The text of the list was the job's result, until now.
void CreateST5Task::openReport()
{
    const auto report = std::make_shared<NURVTaskResults>();
    report->addTaskInSet(*this);
    setResults(report);
}

void CreateST5Task::tellProblem(const QString &problem, const QString &details)
{
    ownOutcome().problem = problem;
    openReport();
    failWith(problem + u'\n' + details);
}

void CreateST5Task::outputEnded()
{
    // The last line may have had no end.
    takeEntries(u"\n"_s);
}

/// The files without a line of their own.
QStringList CreateST5Task::unlisted() const
{
    QStringList missing = m_strangers;
    QStringList listed = m_listed;
    QStringList strangers;
    for (const QString &path : m_strangers)
        strangers.append(lastPathComponent(path));
    for (const QString &argument : arguments().sliced(shntool::kHashListOptions)) {
        const QString name = shntool::hashedName(argument);
        // What stands in the list under the name of a stranger is another file.
        if (strangers.removeOne(name) || listed.removeOne(name))
            continue;
        missing.append(name);
    }
    return missing;
}

void CreateST5Task::cleanup()
{
    if (cancelled() || !hasRun() || !ownOutcome().problem.isEmpty())
        return;
    const QStringList missing = unlisted();
    if (!missing.isEmpty()) {
        const qsizetype unnameable =
            std::count_if(m_strangers.cbegin(), m_strangers.cend(),
                          [](const QString &path) { return !checksumList::canName(lastPathComponent(path)); });
        const qsizetype wanted = arguments().size() - shntool::kHashListOptions + unnameable;
        QString details;
        for (const QString &name : missing)
            details += name + u" is not in the list\n"_s;
        tellProblem(u"%1 of %2 %3 not in the list"_s.arg(QString::number(missing.size()), QString::number(wanted),
                                                        (wanted == 1 ? u"file"_s : u"files"_s)
                                                            + (missing.size() == 1 ? u" is"_s : u" are"_s)),
                    details + m_complaints);
        return;
    }
    for (const QString &name : std::as_const(m_listed)) {
        if (checksumList::isReadBack(checksumList::ListKind::St5, name))
            continue;
        if (!results())
            openReport();
        warn(checksumList::misreadText(name));
    }
}

} // namespace nurv
