// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/UnfinishedWork.h"

#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileNames.h"
#include "journal/JournalFile.h"
#include "journal/JournalFolder.h"
#include "journal/LeftoverFinder.h"
#include "journal/LeftoverRemoval.h"
#include "journal/RunningPrograms.h"
#include "journal/StaleJournal.h"

#include <QSet>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <memory>
#include <numeric>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// What a program gets to clear away after itself before it is killed.
constexpr std::chrono::milliseconds kGrace{1000};

UnfinishedRun lookAt(const JournalContents &contents, const RunningPrograms &programs, QSet<QByteArray> &seen)
{
    if (contents.defect.isEmpty())
        return LeftoverFinder(contents, programs, seen).find();
    UnfinishedRun run;
    run.defect = contents.defect;
    return run;
}

void removeJournal(const FileDescriptor &folder, const QByteArray &name, const StaleJournal &journal)
{
    if (const int error = journal.remove(folder, name))
        qCWarning(journalLog).noquote() << "Not removed:" << journalFolderPath() << name << systemErrorText(error);
}

/// Whether it may go better another time.
bool isWorthKeeping(const Leftover &leftover)
{
    return leftover.plan == Leftover::Plan::Wait
           || (leftover.plan != Leftover::Plan::Leave && leftover.outcome == Leftover::Outcome::Left);
}

bool mustStay(const UnfinishedRun &run)
{
    return !run.defect.isEmpty() || run.runningPrograms > 0
           || std::any_of(run.leftovers.begin(), run.leftovers.end(), isWorthKeeping);
}

} // namespace

UnfinishedWork UnfinishedWork::find()
{
    UnfinishedWork work;
    const FileDescriptor folder = openJournalFolder(false);
    if (!folder.isOpen() && errno != ENOENT)
        qCWarning(journalLog).noquote() << "Not looked at:" << journalFolderPath() << systemErrorText(errno);
    const QList<QByteArray> names = folder.isOpen() ? StaleJournal::names(folder) : QList<QByteArray>();
    std::optional<RunningPrograms> programs;
    QSet<QByteArray> seen;
    for (const QByteArray &name : names) {
        const std::optional<StaleJournal> journal = StaleJournal::open(folder, name);
        if (!journal)
            continue;
        if (!programs)
            programs = RunningPrograms::now();
        UnfinishedRun run = lookAt(journal->contents(), *programs, seen);
        run.journal = name;
        if (run.isEmpty())
            removeJournal(folder, name, *journal);
        else
            work.m_runs.append(std::move(run));
    }
    return work;
}

UnfinishedWork UnfinishedWork::cleanUp() const
{
    UnfinishedWork result;
    const FileDescriptor folder = openJournalFolder(false);
    // All are held before the first program is ended: one process may have several.
    QList<std::pair<QByteArray, std::shared_ptr<StaleJournal>>> journals;
    for (const UnfinishedRun &run : m_runs) {
        if (std::optional<StaleJournal> journal = StaleJournal::open(folder, run.journal)) {
            const JournalContents &contents = journal->contents();
            if (contents.defect.isEmpty() && contents.boot == bootIdentifier()
                && !RunningPrograms::end(contents.processMark, kGrace)) {
                qCWarning(journalLog) << "A program of an earlier run does not end";
            }
            journals.append({run.journal, std::make_shared<StaleJournal>(std::move(*journal))});
        }
    }
    const RunningPrograms programs = RunningPrograms::now();
    QSet<QByteArray> seen;
    for (const auto &[name, journal] : std::as_const(journals)) {
        UnfinishedRun run = lookAt(journal->contents(), programs, seen);
        run.journal = name;
        std::for_each(run.leftovers.begin(), run.leftovers.end(), carryOut);
        if (!mustStay(run))
            removeJournal(folder, name, *journal);
        result.m_runs.append(std::move(run));
    }
    return result;
}

QList<Leftover> UnfinishedWork::leftoversTo(Leftover::Plan plan) const
{
    QList<Leftover> found;
    for (const UnfinishedRun &run : m_runs) {
        std::copy_if(run.leftovers.begin(), run.leftovers.end(), std::back_inserter(found),
                     [plan](const Leftover &leftover) { return leftover.plan == plan; });
    }
    return found;
}

QList<Leftover> UnfinishedWork::leftoversThatWere(Leftover::Outcome outcome) const
{
    QList<Leftover> found;
    for (const UnfinishedRun &run : m_runs) {
        std::copy_if(run.leftovers.begin(), run.leftovers.end(), std::back_inserter(found),
                     [outcome](const Leftover &leftover) { return leftover.outcome == outcome; });
    }
    return found;
}

int UnfinishedWork::runningPrograms() const
{
    return std::accumulate(m_runs.begin(), m_runs.end(), 0,
                           [](int sum, const UnfinishedRun &run) { return sum + run.runningPrograms; });
}

QStringList UnfinishedWork::sources() const
{
    QStringList names;
    QSet<QByteArray> known;
    for (const UnfinishedRun &run : m_runs) {
        for (const UnfinishedSource &unfinished : run.sources) {
            const std::optional<QString> name = fileNameFromBytes(unfinished.source);
            if (name && !known.contains(unfinished.source))
                names.append(*name);
            known.insert(unfinished.source);
        }
    }
    return names;
}

QStringList UnfinishedWork::defects() const
{
    QStringList lines;
    for (const UnfinishedRun &run : m_runs) {
        if (!run.defect.isEmpty())
            lines.append(u"%1/%2: %3"_s.arg(journalFolderPath(), QString::fromLatin1(run.journal), run.defect));
    }
    return lines;
}

} // namespace nurv
