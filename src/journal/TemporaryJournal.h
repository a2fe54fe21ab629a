// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/JournalFile.h"

#include <QByteArray>
#include <QSet>

#include <memory>
#include <mutex>

namespace nurv {

/// The journal of this process's temporary files, made with the first of them and gone
/// with the process when none is left. Any thread.
class TemporaryJournal {
public:
    static TemporaryJournal &instance();

    /// Makes the file, so that it is in place when the first temporary file is.
    void prepare();
    void note(const QByteArray &path);
    void forget(const QByteArray &path);

private:
    TemporaryJournal() = default;
    void removeWhenEmpty();
    void makeFile();

    std::mutex m_lock;
    std::unique_ptr<JournalFile> m_file;
    bool m_hasFailed = false;
    QSet<QByteArray> m_paths;
};

} // namespace nurv
