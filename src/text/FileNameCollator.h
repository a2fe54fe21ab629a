// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace nurv {

/// The order of a file browser: by the rules of the user's language, letter case
/// aside, numbers by value ("track 2" before "track 10"). What these rules hold
/// equal is told apart by plain comparison, so the order is total and the same
/// for any initial order. Where the language is "C", English is used.
///
/// All functions may be called from any thread.
class FileNameCollator {
public:
    /// Below 0, 0 or above 0 as `left` stands before, at or behind `right`.
    /// 0 only for equal texts.
    [[nodiscard]] static int compare(const QString &left, const QString &right);

    /// Sorts whole paths, compared as texts from their first character on.
    static void sortPaths(QStringList &paths);
};

} // namespace nurv
