// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/ReplayGainTask.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "base/WorkerThreads.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/OutputJournal.h"
#include "programs/Metaflac.h"
#include "tags/MetadataInventory.h"
#include "text/TextNumbers.h"

#include <algorithm>
#include <cerrno>
#include <exception>
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
      m_paths(paths), m_isAdding(isAdding)
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
        const std::optional<struct stat> before = statusOfName(path);
        if (!before)
            return u"%1 is no file"_s.arg(name);
        m_sources.push_back({.path = path, .before = *before});
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

/// There may be thousands of files, and the disk may take its time.
void ReplayGainTask::completeStop()
{
    if (!hasRun()) {
        NURVAsyncNSTask::completeStop();
        return;
    }
    const auto self = std::static_pointer_cast<ReplayGainTask>(shared_from_this());
    try {
        workerThreads::start([task = self]() mutable {
            task->examineSources();
            // The job must not end on this thread.
            ReplayGainTask *const examined = task.get();
            postToGuiThread([task = std::move(task), examined] { examined->NURVAsyncNSTask::completeStop(); });
        });
    } catch (const std::exception &) {
        examineSources();
        NURVAsyncNSTask::completeStop();
    }
}

void ReplayGainTask::examineSources()
{
    for (Source &source : m_sources) {
        const std::optional<struct stat> now = statusOfName(source.path);
        source.isWritten = now && !isUntouched(source.before, *now);
        if (!isAsTold(source.path))
            m_wrongNames.append(lastPathComponent(source.path));
    }
}

bool ReplayGainTask::isAsTold(const QString &path) const
{
    try {
        const QMap<QString, QStringList> tags = MetadataInventory::of(path).tags;
        return tags.contains(u"REPLAYGAIN_TRACK_GAIN"_s) == m_isAdding
               && tags.contains(u"REPLAYGAIN_ALBUM_GAIN"_s) == m_isAdding;
    } catch (const NurvFailure &failure) {
        qCWarning(utilLog).noquote() << path << ':' << failure.reason();
        return false;
    }
}

/// metaflac first measures all files, and then writes one after the other.
void ReplayGainTask::tellOutcome()
{
    const auto written = static_cast<int>(
        std::count_if(m_sources.begin(), m_sources.end(), [](const Source &source) { return source.isWritten; }));
    if (!error() && !cancelled()) {
        if (m_wrongNames.isEmpty())
            return;
        ownOutcome().problem = (m_isAdding ? u"metaflac told of no failure, and has not written the gain into %1"_s
                                           : u"metaflac told of no failure, and has not taken the gain out of %1"_s)
                                   .arg(m_wrongNames.join(u", "_s));
        ownOutcome().failedSources = static_cast<int>(m_wrongNames.size());
        failWith(outcome().problem + u'\n');
        return;
    }
    if (written == 0)
        return;
    ownOutcome().failedSources = sourceCount() - written;
    const QString told = u"%1 of %2 files were written already"_s.arg(written).arg(sourceCount());
    ownOutcome().problem += outcome().problem.isEmpty() ? told : u"; "_s + told;
    m_report += told + u'\n';
}

void ReplayGainTask::finalCleanup()
{
    m_claims.clear();
    m_journal.reset();
}

void ReplayGainTask::cleanup()
{
    if (error() && outcome().problem.isEmpty()) {
        const QString reason = metaflac::reasonOfFailure(m_report);
        ownOutcome().problem = reason.isEmpty() ? trimWhitespaceAndNewlines(m_report).section(u'\n', 0, 0) : reason;
    }
    if (!hasRun())
        return;
    removeScratches();
    tellOutcome();
}

} // namespace nurv
