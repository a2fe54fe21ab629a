// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileFactsReader.h"

#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/WorkerThreads.h"

#include <QPointer>
#include <QSet>

#include <chrono>
#include <deque>
#include <mutex>
#include <system_error>

namespace nurv {

namespace {

using Clock = std::chrono::steady_clock;

/// The first facts are shown soon, and thousands wake the window a few times a second only.
constexpr std::chrono::milliseconds kHandOver{100};
/// Nobody sees more rows at once.
constexpr std::size_t kMostWanted = 200;

} // namespace

struct FileFactsReader::Work {
    std::mutex lock;
    // Behind the lock.
    std::deque<QString> waiting;
    std::deque<QString> wanted; ///< are being looked at; the last first
    QSet<QString> left;         ///< of both
    QHash<QString, FileFacts> known;
    bool mustStop = false;
    bool isRunning = false;
    int round = 0;

    QPointer<FileFactsReader> reader; ///< for the GUI thread only

    /// The next file with what is known of it; nothing when there is none.
    std::optional<std::pair<QString, std::optional<FileFacts>>> next(int *ofRound)
    {
        const std::scoped_lock guard(lock);
        *ofRound = round;
        while (!mustStop && !(wanted.empty() && waiting.empty())) {
            const bool isWanted = !wanted.empty();
            std::deque<QString> &from = isWanted ? wanted : waiting;
            const QString path = isWanted ? from.back() : from.front();
            if (isWanted)
                from.pop_back();
            else
                from.pop_front();
            if (!left.remove(path))
                continue;
            const auto found = known.constFind(path);
            return std::pair(path, found == known.cend() ? std::nullopt : std::optional(*found));
        }
        isRunning = false;
        return std::nullopt;
    }
};

FileFactsReader::FileFactsReader(QObject *parent) : QObject(parent), m_work(std::make_shared<Work>())
{
    m_work->reader = this;
}

FileFactsReader::~FileFactsReader()
{
    const std::scoped_lock guard(m_work->lock);
    m_work->mustStop = true;
}

void FileFactsReader::wake()
{
    if (std::exchange(m_isAwake, true))
        return;
    setFiles(m_files);
}

void FileFactsReader::setFiles(const QStringList &paths)
{
    m_files = paths;
    QHash<QString, FileFacts> kept;
    kept.reserve(paths.size());
    QStringList unknown;
    m_totalBytes = 0;
    m_totalSeconds = 0.0;
    for (const QString &path : paths) {
        const auto known = m_facts.constFind(path);
        if (known == m_facts.cend()) {
            unknown.append(path);
            continue;
        }
        kept.insert(path, *known);
        count(*known, 1);
    }
    m_facts = std::move(kept);
    readAll(unknown, {});
    Q_EMIT factsChanged();
}

void FileFactsReader::refresh()
{
    readAll(m_files, m_facts);
}

const FileFacts *FileFactsReader::facts(const QString &path) const
{
    if (const auto known = m_facts.constFind(path); known != m_facts.cend())
        return &*known;
    const std::scoped_lock guard(m_work->lock);
    if (m_work->left.contains(path)) {
        m_work->wanted.push_back(path);
        if (m_work->wanted.size() > kMostWanted)
            m_work->wanted.pop_front();
    }
    return nullptr;
}

void FileFactsReader::readAll(const QStringList &paths, const QHash<QString, FileFacts> &known)
{
    ++m_round;
    if (!m_isAwake)
        return;
    {
        const std::scoped_lock guard(m_work->lock);
        m_work->round = m_round;
        m_work->wanted.clear();
        m_work->waiting.assign(paths.cbegin(), paths.cend());
        m_work->left = QSet<QString>(paths.cbegin(), paths.cend());
        m_work->known = known;
        if (paths.isEmpty() || m_work->isRunning)
            return;
        m_work->isRunning = true;
    }
    try {
        workerThreads::start([work = m_work] { run(work); });
    } catch (const std::system_error &failure) {
        // The list works without them.
        qCWarning(appLog, "The facts of the files are not read: %s", failure.what());
        const std::scoped_lock guard(m_work->lock);
        m_work->isRunning = false;
    }
}

void FileFactsReader::run(const std::shared_ptr<Work> &work)
{
    Found found;
    int round = 0;
    Clock::time_point last = Clock::now();
    const auto handOver = [&](int ofRound) {
        if (!found.empty())
            postToGuiThread([reader = work->reader, ofRound, found = std::exchange(found, {})] {
                if (reader)
                    reader->take(ofRound, found);
            });
        last = Clock::now();
    };
    for (;;) {
        int roundNow = 0;
        const auto next = work->next(&roundNow);
        if (roundNow != round || !next)
            handOver(round);
        round = roundNow;
        if (!next)
            return;
        found.emplace_back(next->first, FileFacts::read(next->first, next->second));
        if (Clock::now() - last >= kHandOver)
            handOver(round);
    }
}

void FileFactsReader::take(int round, const Found &found)
{
    // Of a list that is another one now.
    if (round != m_round)
        return;
    for (const auto &[path, facts] : found) {
        if (const auto former = m_facts.constFind(path); former != m_facts.cend())
            count(*former, -1);
        m_facts.insert(path, facts);
        count(facts, 1);
    }
    Q_EMIT factsChanged();
}

void FileFactsReader::count(const FileFacts &facts, int sign)
{
    m_totalBytes += sign * facts.bytes();
    m_totalSeconds += sign * facts.seconds().value_or(0.0);
}

} // namespace nurv
