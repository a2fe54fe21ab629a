// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/CreateST5Task.h"

#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/ListEntries.h"
#include "engine/NURVTaskResults.h"
#include "programs/Shntool.h"
#include "text/TextNumbers.h"

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
    ownOutcome().problem = problem;
    // The text of the list was the job's result.
    const auto told = std::make_shared<NURVTaskResults>();
    told->addTaskInSet(*this);
    setResults(told);
    failWith(problem);
}

void CreateST5Task::cleanup()
{
    takeEntries(u"\n"_s);
    const auto wanted = static_cast<int>(arguments().size()) - shntool::kHashListOptions;
    if (cancelled() || !hasRun() || m_lineCount >= wanted)
        return;
    ownOutcome().problem = wanted - m_lineCount == 1 ? u"1 of %1 files is not in the list"_s.arg(wanted)
                                                     : u"%1 of %2 files are not in the list"_s.arg(wanted - m_lineCount).arg(wanted);
    setError(true);
}

} // namespace nurv
