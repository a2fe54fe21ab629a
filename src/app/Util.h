// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// File operations that many jobs share. Any thread.
class Util {
public:
    /// Makes a new empty file that only its owner may read, named
    /// "Nurv-<session>-<unique>.<extension>", in `folder` or, without one, in the
    /// user's temporary folder. Returns its path. Throws NurvFailure.
    [[nodiscard]] static QString generateTempFileName(const std::optional<QString> &folder,
                                                      const std::optional<QString> &extension);
    /// The same name with "XXXXXXXX" in the place of the unique part; makes no file.
    [[nodiscard]] static QString generateTempFileName2(const std::optional<QString> &folder,
                                                       const std::optional<QString> &extension);
    /// Removes the file as the setting "trashOrDelete" says. Reports nothing; a
    /// file that cannot be moved to the trash stays.
    static void deleteFile(const QString &path);
};

} // namespace nurv
