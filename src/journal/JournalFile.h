// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>

#include <cstdint>

namespace nurv {

/// A journal that this process writes: locked, and the lock held to the end of the
/// process unless the file is removed before. One thread at a time.
///
///     header line, "marks whole" line, the lines given ──> on the disk ──> more lines, not flushed
///
/// A line that could not be written would be missed by whoever reads the file later. The
/// second line then says "marks holey" instead, in the same place: a full disk allows that.
class JournalFile {
public:
    /// The largest file that is written and read.
    static constexpr std::int64_t kLargest = 256LL * 1024 * 1024;

    /// Makes the file; both it and its folder are on the disk then. Blocks for that.
    /// Throws NurvFailure.
    explicit JournalFile(const QByteArray &lines);
    /// Unless the file was removed, its lock stays for the rest of the process's life:
    /// nobody takes what is in it for left behind.
    ~JournalFile();
    JournalFile(const JournalFile &) = delete;
    JournalFile &operator=(const JournalFile &) = delete;

    /// Appends whole lines. A failure makes one line in the log, and the file says of itself
    /// that it has a gap.
    void append(const QByteArray &lines);
    /// What was appended is on the disk when this returns.
    void flush();
    /// How large it is beyond what it began with.
    [[nodiscard]] std::int64_t growth() const { return m_size - m_firstSize; }
    /// Forgets everything but what it began with.
    void shrink();
    void remove();

private:
    [[nodiscard]] bool write(const QByteArray &bytes, std::int64_t at) const;
    void noteGap(int error);

    FileDescriptor m_folder;
    FileDescriptor m_file;
    QByteArray m_name;
    std::int64_t m_stateAt = 0; ///< where the second line begins
    std::int64_t m_firstSize = 0;
    std::int64_t m_size = 0;
    bool m_hasGap = false;
};

/// The number of this start of the system; empty where the kernel does not tell.
[[nodiscard]] QByteArray bootIdentifier();

/// The second line of a journal.
[[nodiscard]] QByteArray stateLine(bool isWhole);

} // namespace nurv
