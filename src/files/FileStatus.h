// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

#include <sys/stat.h>

namespace nurv {

/// What the system tells of the file, that of its target for a link; nothing without one.
[[nodiscard]] std::optional<struct stat> statusOf(const QString &path);
[[nodiscard]] bool isSameFile(const struct stat &left, const struct stat &right);
/// The same file, not written to in between.
[[nodiscard]] bool isUntouched(const struct stat &before, const struct stat &now);
/// Whether something has that name: also true for a link that leads nowhere.
[[nodiscard]] bool isThere(const QString &path);
/// Whether the name itself is a symbolic link, wherever it leads.
[[nodiscard]] bool isLink(const QString &path);

} // namespace nurv
