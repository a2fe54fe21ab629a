// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <string>

namespace nurv {

/// What a run did, line by line. A log of an earlier run is written over; any other file of that name stays, and a
/// link is not followed.
class AuthorLog {
public:
    /// Without a name nothing is written. Throws ToolError(Write).
    explicit AuthorLog(const std::string &name);

    /// With what a terminal would obey made visible. Throws ToolError(Write).
    void add(const std::string &line);

private:
    std::string m_name;
    FileDescriptor m_file;
};

} // namespace nurv
