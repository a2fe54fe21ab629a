// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"
#include "journal/JournalContents.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace nurv {

/// A journal whose process has ended, held by this one until the object goes: no other
/// process looks at it meanwhile.
class StaleJournal {
public:
    /// The journals in the folder, also of processes that run. Clears away what a process was
    /// killed at before it had begun anything.
    [[nodiscard]] static QList<QByteArray> names(const FileDescriptor &folder);

    /// Nothing for one that is in use or gone. What cannot be read or understood has a
    /// defect in its contents. Blocks while it reads.
    [[nodiscard]] static std::optional<StaleJournal> open(const FileDescriptor &folder, const QByteArray &name);

    [[nodiscard]] const JournalContents &contents() const { return m_contents; }
    /// Adds lines to a journal of a process that has ended; nothing while another one holds
    /// it. They count from the next reading on. Returns whether that was possible.
    [[nodiscard]] static bool append(const FileDescriptor &folder, const QByteArray &name, const QByteArray &lines);
    /// Returns the errno of a failure, else 0.
    [[nodiscard]] int remove(const FileDescriptor &folder, const QByteArray &name) const;

private:
    /// Like `open`, without reading it.
    [[nodiscard]] static std::optional<StaleJournal> hold(const FileDescriptor &folder, const QByteArray &name);

    FileDescriptor m_file;
    JournalContents m_contents;
};

/// What stale journals say of the outputs of a batch that is about to begin: as soon as
/// one is made anew, what a killed process left under that name is no longer there.
class StaleNotes {
public:
    /// Looks for outputs for which `isPlanned` holds.
    [[nodiscard]] static StaleNotes find(const std::function<bool(const QByteArray &output)> &isPlanned);
    /// Notes in those journals that the output is no longer theirs.
    void noteMadeAnew(const QByteArray &output);

private:
    struct Place {
        QByteArray journal;
        std::int64_t number = 0;
    };
    QHash<QByteArray, QList<Place>> m_places; ///< by output
};

} // namespace nurv
