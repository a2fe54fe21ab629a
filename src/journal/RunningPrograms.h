// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>

#include <chrono>
#include <cstdint>
#include <utility>

#include <sys/stat.h>
#include <sys/types.h>

namespace nurv {

/// The programs of this user that run, and the files that they have open, as /proc shows
/// them at one moment. What it does not show is not known here either.
class RunningPrograms {
public:
    /// Looks at every program. Blocks for some milliseconds.
    [[nodiscard]] static RunningPrograms now();

    [[nodiscard]] bool isOpen(const struct stat &file) const { return m_open.contains(keyOf(file)); }
    [[nodiscard]] bool isOpenForWriting(const struct stat &file) const { return m_written.contains(keyOf(file)); }

    /// The programs that a process with this mark has started (see processMark), also
    /// those that its children started.
    [[nodiscard]] QList<pid_t> startedBy(const QByteArray &mark) const { return m_programsOfMark.value(mark); }
    /// Whether any program that a process with a mark has started may be at work on files
    /// of the folder: it was started in it, or with its path in an argument.
    [[nodiscard]] bool mayWorkIn(const QByteArray &folder) const;

    /// Asks the programs that a process with this mark has started to end, ends those that
    /// have not after `grace`, and waits until they are gone. Returns whether they are.
    [[nodiscard]] static bool end(const QByteArray &mark, std::chrono::milliseconds grace);

private:
    using FileKey = std::pair<std::uint64_t, std::uint64_t>; ///< device and inode
    [[nodiscard]] static FileKey keyOf(const struct stat &file) { return {file.st_dev, file.st_ino}; }
    void lookAtFiles(const QByteArray &folder);

    QSet<FileKey> m_open;
    QSet<FileKey> m_written;
    QHash<QByteArray, QList<pid_t>> m_programsOfMark;
    QList<QByteArray> m_surroundings; ///< the arguments and the folder of each of these
};

} // namespace nurv
