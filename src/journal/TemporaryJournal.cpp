// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/TemporaryJournal.h"

#include "base/Log.h"
#include "base/NurvFailure.h"
#include "journal/JournalLine.h"

#include <cstdint>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What a process that runs for weeks may note of files that are long gone.
constexpr std::int64_t kLargestGrowth = 1024 * 1024;

} // namespace

TemporaryJournal &TemporaryJournal::instance()
{
    // Never destroyed: a worker that outlives the end still tells its files.
    static TemporaryJournal *const journal = [] {
        std::atexit([] { instance().removeWhenEmpty(); });
        return new TemporaryJournal;
    }();
    return *journal;
}

void TemporaryJournal::note(const QByteArray &path)
{
    const QByteArray line = journalLine({"temporary", path});
    const std::scoped_lock lock(m_lock);
    m_paths.insert(path);
    makeFile();
    if (m_file)
        m_file->append(line);
}

void TemporaryJournal::prepare()
{
    const std::scoped_lock lock(m_lock);
    makeFile();
}

void TemporaryJournal::makeFile()
{
    if (m_file || m_hasFailed)
        return;
    try {
        m_file = std::make_unique<JournalFile>(QByteArray());
    } catch (const NurvFailure &failure) {
        m_hasFailed = true;
        qCWarning(journalLog).noquote() << "Temporary files are not noted:" << failure.reason();
    }
}

void TemporaryJournal::forget(const QByteArray &path)
{
    const std::scoped_lock lock(m_lock);
    if (!m_paths.remove(path) || !m_file)
        return;
    m_file->append(journalLine({"gone", path}));
    if (m_paths.isEmpty() && m_file->growth() > kLargestGrowth)
        m_file->shrink();
}

void TemporaryJournal::removeWhenEmpty()
{
    const std::scoped_lock lock(m_lock);
    if (m_file && m_paths.isEmpty())
        m_file->remove();
}

} // namespace nurv
