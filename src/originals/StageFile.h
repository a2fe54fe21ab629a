// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FolderEntry.h"

#include <QString>

#include <optional>

#include <time.h>

namespace nurv {

/// A file between two stages of a conversion, empty at first. It lies in the output
/// folder, where there is room for the output too, and is removed with this object.
class StageFile {
public:
    /// Makes the file. Throws NurvFailure, which names the folder.
    explicit StageFile(const QString &folder, const QString &extension = QStringLiteral("wav"));
    ~StageFile();
    StageFile(const StageFile &) = delete;
    StageFile &operator=(const StageFile &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }
    /// Lets others read it as they may any new file, for a program that gives its output
    /// the permissions of its input.
    void grantUsualAccess() const;
    /// Leaves the file to somebody else from here on.
    void giveUp();
    /// Gives the file a name that nothing has, and the permissions of new files. Throws
    /// NurvFailure.
    void place(const QString &path);

private:
    QString m_path;
    timespec m_since;
    std::optional<FolderEntry> m_entry; ///< in the folder that the file was made in
};

} // namespace nurv
