// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/ReplayGainTask.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/SystemError.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/OutputJournal.h"
#include "programs/Metaflac.h"
#include "text/TextNumbers.h"

#include <algorithm>
#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kLongestReport = 64 * 1024;

QString scratchOf(const QString &path)
{
    return path + kMetaflacScratchSuffix.toString();
}

} // namespace

ReplayGainTask::ReplayGainTask(NURVTaskQueue *queue, const QString &launchPath, bool isAdding, const QStringList &paths)
    : NURVAsyncNSTask(queue, launchPath,
                      isAdding ? metaflac::addReplayGainArguments(paths) : metaflac::removeReplayGainArguments(paths)),
      m_paths(paths)
{
    nameRow(isAdding ? u"Adding FLAC replay gain"_s : u"Removing FLAC replay gain"_s);
    dropResults();
    startIndeterminateProgressBar();
}

std::optional<QString> ReplayGainTask::takeAll()
{
    for (const QString &path : m_paths) {
        const QString name = lastPathComponent(path);
        if (isLink(path))
            return u"%1 is a link, and metaflac would put a file in its place"_s.arg(name);
        if (!isPlainFile(path))
            return u"%1 is no file"_s.arg(name);
        if (isThere(scratchOf(path)))
            return u"%1 is there already, and has the name of a temporary file of metaflac"_s.arg(
                lastPathComponent(scratchOf(path)));
        auto &claim = m_claims.emplace_back(std::make_unique<OutputClaim>());
        if (claim->take(path, path, nullptr))
            return u"another job works on %1"_s.arg(name);
    }
    return std::nullopt;
}

ReplayGainTask::~ReplayGainTask() = default;

void ReplayGainTask::startTask()
{
    const std::optional<QString> obstacle = takeAll();
    if (!obstacle) {
        std::vector<OutputJournal::Planned> scratches;
        for (const QString &path : std::as_const(m_paths))
            scratches.push_back({.output = scratchOf(path), .source = path});
        m_journal = OutputJournal::begin(scratches);
        for (const OutputJournal::Planned &scratch : scratches)
            m_journal->markBegun(scratch.output);
        NURVAsyncNSTask::startTask();
        return;
    }
    becomeActive();
    ownOutcome().problem = *obstacle;
    failToStart(*obstacle + u'\n');
}

void ReplayGainTask::processTaskOutput(const QString &chunk)
{
    m_report = (m_report + chunk).last(std::min(m_report.size() + chunk.size(), kLongestReport));
}

void ReplayGainTask::failWith(const QString &reason)
{
    setError(true);
    m_report += reason;
}

/// metaflac leaves its temporary file when it is ended, and takes no other for it the next time. Nothing had its name
/// when the job began.
void ReplayGainTask::removeScratches()
{
    for (const QString &path : std::as_const(m_paths)) {
        const QString scratch = scratchOf(path);
        if (isThere(scratch) && !FolderEntry(scratch).remove())
            m_report += u"%1 could not be removed: %2\n"_s.arg(scratch, systemErrorText(errno));
        else
            m_journal->markEnded(scratch);
    }
}

void ReplayGainTask::finalCleanup()
{
    m_claims.clear();
    m_journal.reset();
}

void ReplayGainTask::cleanup()
{
    if (hasRun())
        removeScratches();
    if (!error() || !outcome().problem.isEmpty())
        return;
    const QString reason = metaflac::reasonOfFailure(m_report);
    ownOutcome().problem = reason.isEmpty() ? trimWhitespaceAndNewlines(m_report).section(u'\n', 0, 0) : reason;
}

} // namespace nurv
