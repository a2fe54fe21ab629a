// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "originals/OutputClaim.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

#include <sys/stat.h>

namespace nurv {

class OutputJournal;

/// What one run of shntool makes of its sources, one file of each: the right to make them, and what becomes of them.
///
///     take ──> begin ──> the program: a-fixed.flac, b-fixed.flac, ... ──> place: a.flac, b.flac, ... ──> tags ──> markComplete
///                                                                     └──> removeAll
///
/// Nothing is ever replaced. Used by one thread at a time: the GUI thread takes, a worker does the rest.
class FixedFiles {
public:
    /// `format`: "shn", "flac", "aiff" or "wav" in any case.
    FixedFiles(const QStringList &sources, const QString &outputFolder, const QString &format);
    ~FixedFiles();
    FixedFiles(const FixedFiles &) = delete;
    FixedFiles &operator=(const FixedFiles &) = delete;

    /// The fixed files, in the order of the sources: their names less the extension, plus that of the format.
    [[nodiscard]] QStringList paths() const;
    [[nodiscard]] QString path(qsizetype place) const { return m_files[static_cast<std::size_t>(place)].path; }

    /// Takes all files for this job. Returns what is in the way, a line per source that begins with its name; then none is
    /// taken. GUI thread.
    [[nodiscard]] QStringList take();
    /// Gives them back to other jobs. Any thread.
    void release();
    /// Whether another job works on one of the sources as well. Also after `release`.
    [[nodiscard]] bool areSourcesReadByOthers() const;

    /// Notes all files in a journal.
    void begin();
    /// The program has begun with this one.
    void markBegun(qsizetype place);
    /// The program has made them all: gives each its name. Throws NurvFailure; of what is this job's for sure nothing is left
    /// then.
    void place();
    /// The file is another one now, by the job's own doing.
    void markWritten(qsizetype place);
    /// They stand, with their tags: after the end of the application, too.
    void markComplete();
    /// Removes what `place` has named, where it still is just that.
    void removeAll();
    /// Puts the journal on the disk, before sources go.
    void flushJournal();

    /// The files there are with names that the program gives: after one that failed they are whole, and maybe not its own.
    [[nodiscard]] QStringList leftByProgram() const;
    [[nodiscard]] qint64 bytes() const;

private:
    struct File {
        QString source;
        QString path;
        QStringList madeAs; ///< the paths that the program may give it at first; the extension decides
        OutputClaim claim = {};
        std::optional<struct stat> made = {};  ///< the only one of `madeAs` at the end of the program: it is this job's
        std::optional<struct stat> facts = {}; ///< once it was placed
    };

    [[nodiscard]] static QStringList obstaclesOf(const File &file);
    [[nodiscard]] QStringList clashes() const;
    static void noteMade(File &file);
    void placeOne(File &file);

    std::vector<File> m_files;
    std::shared_ptr<OutputJournal> m_journal;
};

} // namespace nurv
