// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace nurv {

/// A new hidden folder beside a file to be made, closed to others. It is removed with
/// this object, and with all that it holds.
class PrivateFolder {
public:
    /// Throws ToolError(Write) where no folder can be made.
    explicit PrivateFolder(const std::string &destination);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder &) = delete;
    PrivateFolder &operator=(const PrivateFolder &) = delete;

    [[nodiscard]] const std::string &path() const { return m_path; }

    /// The paths of what it holds.
    [[nodiscard]] std::vector<std::string> contents() const;

private:
    std::string m_path;
};

} // namespace nurv
