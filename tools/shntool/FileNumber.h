// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <compare>
#include <optional>
#include <string>

#include <sys/types.h>

namespace nurv {

/// What file a name stands for, however it is spelled: equal for hard links.
struct FileNumber {
    dev_t device = 0;
    ino_t inode = 0;

    friend auto operator<=>(const FileNumber &, const FileNumber &) = default;

    /// Links are followed. Nothing where there is no such file.
    [[nodiscard]] static std::optional<FileNumber> of(const std::string &name);
    /// Of the link, where the name is one.
    [[nodiscard]] static std::optional<FileNumber> ofLink(const std::string &name);
    /// Nothing where the descriptor is of no regular file.
    [[nodiscard]] static std::optional<FileNumber> ofOpenFile(int descriptor);
};

} // namespace nurv
