// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

#include <time.h>

namespace nurv {

class OutputJournal;

/// A file that stands in the place of an output and is to be replaced: moved aside within
/// its folder while the new one is made, since most programs would empty it at once.
///
///     moved aside ──> the output is whole ──> on the disk ──> retire: it goes the way of originals
///                └──> it is not ───────────> putBack: it has its name again
///
/// Noted in the journal all the while, so that it comes back after a power cut. With the
/// object it is put back.
class ReplacedFile {
public:
    /// Moves the file aside. Throws NurvFailure; it has its name then. `journal` may be null.
    ReplacedFile(const QString &path, std::shared_ptr<OutputJournal> journal);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile &) = delete;
    ReplacedFile &operator=(const ReplacedFile &) = delete;

    /// Gives its permissions to the file that has its name now, which was made after `since`,
    /// with a line in the log when that cannot be done. Before that file is examined.
    void passOnPermissions(const timespec &since) const;
    /// Puts the file that has its name now on the disk. Blocks while that is busy: for a worker, before `retire`.
    void flushNewFile();
    /// Deletes it or moves it to the trash, as the setting "trashOrDelete" says, once the new file is on the
    /// disk: a power cut leaves one of both. Throws NurvFailure, which names where it stays, when it cannot go.
    void retire();
    /// Gives it its name again, which has to be free. Throws NurvFailure, which names where
    /// it stays.
    void putBack();

private:
    [[noreturn]] void stayAside(const QString &reason);
    void forget();

    QString m_path;
    QString m_aside; ///< empty once it is settled
    bool m_isNewFileFlushed = false;
    std::shared_ptr<OutputJournal> m_journal;
};

} // namespace nurv
