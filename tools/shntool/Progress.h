// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace nurv {

class RunMessages;

/// The line that tells how far an operation is:
///
///     Converting [a.wav] (0:01.00) --> [a.flac] :  55%
///
/// It begins when this object is made, and ends with `succeed` or `fail`.
class Progress {
public:
    struct Task {
        std::string action; ///< "Converting"
        std::string file;
        std::string fileDetail; ///< empty: none
        std::string link;       ///< "-->" or "and", with a second file
        std::string otherFile;
        std::string otherDetail;
        uint64_t totalBytes = 0;
    };

    Progress(const RunMessages &messages, Task task);

    void add(uint64_t bytes);
    void succeed();
    /// What comes after that begins the line anew.
    void fail();
    /// The next warning is about this, where nobody sees the progress.
    void noteFailure() const;
    /// Shows the line from its beginning once more.
    void show();
    /// After a file got another name.
    void setOtherFile(const std::string &name) { m_task.otherFile = name; }

private:
    void showPercent(unsigned percent);

    const RunMessages &m_messages;
    Task m_task;
    uint64_t m_doneBytes = 0;
    unsigned m_percent = 0;
    bool m_hasFailed = false;
};

} // namespace nurv
