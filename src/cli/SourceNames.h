// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

namespace nurv {

/// How the user is told of a file: by a path relative to what was given.
///
///     nurv encode shows             disc1/a.wav
///     nurv encode disc1 disc2       disc1/a.wav
///     nurv encode shows/disc1/a.wav shows/disc1/a.wav
class SourceNames {
public:
    /// Notes a file or folder that was given; `path` is its absolute path.
    void add(const QString &given, const QString &path, bool isFolder);
    /// The name of the file or folder with that absolute path; of one that lies in
    /// nothing that was given the path itself.
    [[nodiscard]] QString nameOf(const QString &path) const;

private:
    QHash<QString, QString> m_givenOf; ///< by absolute path
    int m_count = 0;
    bool m_isOneFolder = false; ///< one folder was given, and nothing else
};

} // namespace nurv
