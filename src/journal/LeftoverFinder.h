// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/JournalContents.h"
#include "journal/Leftover.h"
#include "journal/RunningPrograms.h"

#include <QHash>
#include <QSet>

#include <cstdint>
#include <optional>

#include <sys/stat.h>

namespace nurv {

/// Finds what the process of a journal has left, and decides what may happen to it.
///
/// Removed is only what is proven to be ours and unfinished: nothing had the output's name
/// (or the user's file that had it waits aside), its making was begun and not ended, it is
/// a regular file of this user that came to be then, its source is as it was, and no
/// program writes to it. The marks of a journal are exact only as long as the system has
/// not been started anew and no line is missing; else an output is removed only when it is
/// known to be shorter than its source.
class LeftoverFinder {
public:
    /// All three must outlive the finder. `seen`: what was found for other journals already.
    LeftoverFinder(const JournalContents &contents, const RunningPrograms &programs, QSet<QByteArray> &seen);

    /// Looks at every file that the journal names, and at the folders of what was being
    /// made. Changes nothing. Blocks.
    [[nodiscard]] UnfinishedRun find();

private:
    using Facts = std::optional<struct stat>;

    void lookAtOutput(const PlannedOutput &planned);
    void lookAtMadeOutput(const PlannedOutput &planned, const struct stat &present);
    [[nodiscard]] bool lookAtAside(const PlannedOutput &planned, const Facts &present);
    void lookAtScratchFiles(const PlannedOutput &planned);
    void lookAtNotedTemporary(const QByteArray &path);
    void lookAtFolder(const QByteArray &folder);
    void lookAtTagEditorFile(const QByteArray &path);
    void lookAtFolderEntry(const QByteArray &path, Facts facts);
    void noteSource(const PlannedOutput &planned, const Facts &present);

    /// Remove, with no reason, or what else is to happen and why.
    [[nodiscard]] Leftover verdictOn(const PlannedOutput &planned, const struct stat &present) const;
    [[nodiscard]] bool isAsPlanned(const PlannedOutput &planned, const struct stat &present) const;
    [[nodiscard]] bool isOurs(const struct stat &file) const;
    [[nodiscard]] bool isOpenSomewhere(const QByteArray &path, const struct stat &file) const;
    [[nodiscard]] bool mayBeOfAnotherRun(const QByteArray &path, const struct stat &file) const;
    void add(Leftover leftover, const QByteArray &path, const struct stat &file);

    const JournalContents &m_contents;
    const RunningPrograms &m_programs;
    QSet<QByteArray> &m_seen;
    const bool m_isSameBoot;
    const bool m_areMarksExact;
    const std::int64_t m_bootedNs;
    const std::int64_t m_nowNs;
    UnfinishedRun m_run;
    QSet<QByteArray> m_folders; ///< in which something was to be made, and may have been
    QHash<QByteArray, std::int64_t> m_begunOutputs; ///< when, of those that were not ended
};

} // namespace nurv
