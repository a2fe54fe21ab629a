// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/Leftover.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace nurv {

/// What processes left behind that were killed, or went down with the system, as their
/// journals tell it.
///
///     find ──> tell, ask ──> cleanUp ──> what was removed, put back, left
///
/// Journals of processes that run are not looked at. Any thread; both operations block for
/// the disk.
class UnfinishedWork {
public:
    /// Looks at every journal that was left. Changes nothing, but for journals that tell
    /// of nothing: those go.
    [[nodiscard]] static UnfinishedWork find();

    [[nodiscard]] const QList<UnfinishedRun> &runs() const { return m_runs; }
    [[nodiscard]] bool isEmpty() const { return m_runs.isEmpty(); }

    /// Ends the programs of these runs that still work, looks again, removes what is
    /// proven to be unfinished and puts user's files back. A journal goes when there is
    /// nothing that another time could be done of it. Returns what was found and done.
    [[nodiscard]] UnfinishedWork cleanUp() const;

    /// The leftovers with that plan, or that outcome, of all runs.
    [[nodiscard]] QList<Leftover> leftoversTo(Leftover::Plan plan) const;
    [[nodiscard]] QList<Leftover> leftoversThatWere(Leftover::Outcome outcome) const;
    /// How many programs of these runs still work.
    [[nodiscard]] int runningPrograms() const;
    /// The sources that were not finished, once each, as far as their names are text.
    [[nodiscard]] QStringList sources() const;
    /// Why journals cannot be used, each with the path of its file.
    [[nodiscard]] QStringList defects() const;

private:
    QList<UnfinishedRun> m_runs;
};

} // namespace nurv
