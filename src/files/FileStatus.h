// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

#include <sys/stat.h>

namespace nurv {

/// What the system tells of the file, that of its target for a link; nothing without one.
[[nodiscard]] std::optional<struct stat> statusOf(const QString &path);
/// The same of what has that name itself, which may be a link.
[[nodiscard]] std::optional<struct stat> statusOfName(const QString &path);
[[nodiscard]] bool isSameFile(const struct stat &left, const struct stat &right);
/// Whether both paths name one entry of one folder: what takes the place of one takes that of the other. Another name
/// of the same file is another entry.
[[nodiscard]] bool isSameEntry(const QString &left, const QString &right);
/// The same file, not written to in between.
[[nodiscard]] bool isUntouched(const struct stat &before, const struct stat &now);
/// Whether something has that name: also true for a link that leads nowhere.
[[nodiscard]] bool isThere(const QString &path);
/// Whether the name itself is that of a regular file.
[[nodiscard]] bool isPlainFile(const QString &path);
/// Whether the name itself is a symbolic link, wherever it leads.
[[nodiscard]] bool isLink(const QString &path);

} // namespace nurv
