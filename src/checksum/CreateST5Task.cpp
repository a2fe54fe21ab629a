// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateST5Task.h"

#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/ListEntries.h"
#include "engine/NURVTaskResults.h"
#include "programs/Shntool.h"
#include "text/TextNumbers.h"

#include <algorithm>

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
        if (!line.contains(checksumList::kSt5Marker))
            continue;
        appendResultsForSelf(u'\n' + line);
        ++m_lineCount;
    }
}

void CreateST5Task::couldNotWrite(const QString &problem)
{
    NURVAsyncNSTaskFileOutputRedirection::couldNotWrite(problem);
    tellProblem(problem);
}

void CreateST5Task::tellProblem(const QString &problem)
{
    ownOutcome().problem = problem;
    // The text of the list was the job's result.
    const auto told = std::make_shared<NURVTaskResults>();
    told->addTaskInSet(*this);
    setResults(told);
    failWith(problem);
}

void CreateST5Task::outputEnded()
{
    // The last line may have had no end.
    takeEntries(u"\n"_s);
}

void CreateST5Task::cleanup()
{
    const auto wanted = static_cast<int>(arguments().size()) - static_cast<int>(shntool::kHashListOptions);
    const int missing = std::max(wanted - m_lineCount, m_strangers);
    if (cancelled() || !hasRun() || missing <= 0 || !ownOutcome().problem.isEmpty())
        return;
    tellProblem(missing == 1 ? u"1 of %1 files is not in the list"_s.arg(wanted)
                             : u"%1 of %2 files are not in the list"_s.arg(missing).arg(wanted));
}

} // namespace nurv
