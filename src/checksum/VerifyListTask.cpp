// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyListTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "engine/NURVTaskResults.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

using State = ListedFile::State;

/// How a kind of finding is told of one file, and of several.
struct FindingWords {
    State state;
    QStringView one;
    QStringView several;
};

constexpr std::array kWords = {
    FindingWords{State::Missing, u"files is missing", u"files are missing"},
    FindingWords{State::Unreadable, u"files could not be read", u"files could not be read"},
    FindingWords{State::Different, u"files is another one", u"files are other ones"},
    FindingWords{State::Damaged, u"files is damaged", u"files are damaged"},
    FindingWords{State::NotAnEntry, u"lines is no entry", u"lines are no entries"},
};

} // namespace

QStringList statementsOn(const std::vector<ListedFile> &files)
{
    QStringList statements;
    for (const FindingWords &words : kWords) {
        const auto count = std::count_if(files.begin(), files.end(), [&](const ListedFile &file) { return file.state == words.state; });
        if (count > 0)
            statements.append(u"%1 of %2 %3"_s.arg(count).arg(files.size()).arg(count == 1 ? words.one : words.several));
    }
    return statements;
}

VerifyListTask::VerifyListTask(NURVTaskQueue *queue, const QString &fileName, std::shared_ptr<NURVTaskResults> results)
    : NURVInProcessTask(queue)
{
    setResults(std::move(results));
    setSourcePath(fileName);
    nameRow(lastPathComponent(fileName));
}

void VerifyListTask::doStartTask()
{
    showStatus(openingStatus());
    addLines(openingLine());
    showStarted();
    try {
        verify();
    } catch (const NurvFailure &failure) {
        ownOutcome().problem = failure.reason().section(u'\n', 0, 0);
        failWith(failure.reason() + u'\n');
        return;
    }
    if (!cancelled())
        conclude();
}

void VerifyListTask::markDamaged(std::size_t index, const QString &detail)
{
    m_files[index].state = State::Damaged;
    m_files[index].detail = detail;
}

void VerifyListTask::conclude()
{
    QStringList statements = statementsOn(m_files);
    if (m_files.empty())
        statements.append(u"the list has no entries"_s);
    ownOutcome().listedFiles = std::exchange(m_files, {});
    if (statements.isEmpty())
        return;
    ownOutcome().problem = statements.join(u", "_s);
    for (const QString &statement : std::as_const(statements))
        addLines(statement + u'\n');
    setError(true);
}

} // namespace nurv
