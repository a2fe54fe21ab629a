// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <string>

namespace nurv {

/// A new hidden folder beside a file to be made, closed to others, for programs that need a name to write to. It is
/// removed with this object, or by a signal (see EndingCleanup), and with all that it holds. A folder belongs to
/// somebody while it is locked; what a killed run has left is removed by `sweepBeside`.
class PrivateFolder {
public:
    /// Throws ToolError(Write) where no folder can be made.
    explicit PrivateFolder(const std::string &destination);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder &) = delete;
    PrivateFolder &operator=(const PrivateFolder &) = delete;

    /// Removes the folders beside a file that runs have left that were killed.
    static void sweepBeside(const std::string &file);

    [[nodiscard]] const std::string &path() const { return m_path; }

private:
    bool tryToMake(const std::string &parent);

    std::string m_path;
    FileDescriptor m_lock;
};

} // namespace nurv
