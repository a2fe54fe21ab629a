// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/FileDescriptor.h"

#include <string>

namespace nurv {

/// A new hidden folder beside a file to be made, closed to others, for programs that need a name to write to. It is
/// removed with this object, or by a signal (see EndingCleanup), and with all that it holds. What a killed run has
/// left beside the same file is removed by the next one: a folder belongs to somebody while it is locked.
class PrivateFolder {
public:
    /// Throws ToolError(Write) where no folder can be made.
    explicit PrivateFolder(const std::string &destination);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder &) = delete;
    PrivateFolder &operator=(const PrivateFolder &) = delete;

    [[nodiscard]] const std::string &path() const { return m_path; }

private:
    bool tryToMake(const std::string &parent);

    std::string m_path;
    FileDescriptor m_lock;
};

} // namespace nurv
