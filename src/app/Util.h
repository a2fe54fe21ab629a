// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

#include <sys/stat.h>

namespace nurv {

/// File operations that many jobs share. Any thread.
class Util {
public:
    /// Makes a new empty file that only its owner may read, named
    /// "Nurv-<session>-<unique>.<extension>", in `folder` or, without one, in the
    /// user's temporary folder. Returns its path. Throws NurvFailure, also for a
    /// path of 1024 bytes and more; then no file is left.
    [[nodiscard]] static QString generateTempFileName(const std::optional<QString> &folder,
                                                      const std::optional<QString> &extension);
    /// The same name with "XXXXXXXX" in the place of the unique part, the same for
    /// every call; makes no file. Throws NurvFailure.
    [[nodiscard]] static QString generateTempFileName2(const std::optional<QString> &folder,
                                                       const std::optional<QString> &extension);
    /// Removes one file, or link, as the setting "trashOrDelete" says: 0 for good,
    /// else into the trash, also when the stored choice cannot be read. Reports
    /// nothing to the caller; a file that cannot be removed stays, with a line in
    /// the log. Folders are never deleted for good.
    static void deleteFile(const QString &path) { static_cast<void>(removeFile(path)); }

    enum class Removal { Deleted, Trashed, Stayed };
    /// The same for callers that tell what became of the file: also `Deleted` when there
    /// was none. `originalPath`: see moveToTrash. `seen`: what the name, or the link that has
    /// it, led to when its removal was decided; anything else stays.
    [[nodiscard]] static Removal removeFile(const QString &path, const QString &originalPath = {},
                                            const std::optional<struct stat> &seen = std::nullopt);
};

} // namespace nurv
