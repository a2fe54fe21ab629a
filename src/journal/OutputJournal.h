// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace nurv {

/// Notes on the disk what a batch is about to make, so that after a power cut or a
/// SIGKILL the next start knows which files are half made, and which of them are ours.
///
///     begin (flushed) ──> markBegun ──> the program runs ──> markEnded ──> ... ──> gone with the last one
///
/// One file per batch in the user's state folder, locked while its process lives. A disk
/// that is full, or a folder that cannot be written, never stops work: the journal then
/// notes nothing, with one line in the log. Any thread.
class OutputJournal {
public:
    struct Planned {
        QString output; ///< absolute paths
        QString source;
    };

    virtual ~OutputJournal();
    OutputJournal(const OutputJournal &) = delete;
    OutputJournal &operator=(const OutputJournal &) = delete;

    /// Notes a batch, with what is under each output's name now, and flushes that to the
    /// disk before it returns. Never null, never throws.
    [[nodiscard]] static std::shared_ptr<OutputJournal> begin(const std::vector<Planned> &outputs);

    /// Right before something is made under the output's name.
    virtual void markBegun(const QString &output) = 0;
    /// The output is complete, or what was half made of it is gone again.
    virtual void markEnded(const QString &output) = 0;

    /// Right before and right after a file that stands in the output's place is moved
    /// aside, to come back unless a whole output takes its place.
    virtual void noteAside(const QString &output, const QString &aside) = 0;
    virtual void forgetAside(const QString &output) = 0;

    /// What was noted so far is on the disk when this returns: before a source is deleted.
    virtual void flush() = 0;

    /// Makes the place for the notes about temporary files, so that it is there when the
    /// first of them is.
    static void prepareForTemporaries();
    /// A temporary file of this process, whichever batch it belongs to.
    static void noteTemporary(const QString &path);
    static void forgetTemporary(const QString &path);

protected:
    OutputJournal() = default;
};

} // namespace nurv
