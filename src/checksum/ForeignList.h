// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/ListEntries.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace nurv::foreignList {

// Checksum lists as other programs write them: in other encodings, with other marks, names and digests.

/// The text of a list in whatever encoding it has, without its byte-order mark. Throws as checksumList::readList does.
[[nodiscard]] QString read(const QString &path);

// The entries of a text. Comments begin with "#", ";" or "//" anywhere in the list. Digests are in lower case, names as
// the list means them, with the blanks at their ends.

/// "digest *name", "digest  name", the same behind a backslash with what `md5sum` escapes, and "MD5 (name) = digest".
[[nodiscard]] std::vector<checksumList::Entry> md5Entries(const QString &text);
/// "digest  [shntool]  name" with any blanks, also "[shntool]" of versions that add to it.
[[nodiscard]] std::vector<checksumList::Entry> st5Entries(const QString &text);
/// "name:digest"; a name may hold colons and folders.
[[nodiscard]] std::vector<checksumList::Entry> ffpEntries(const QString &text);

/// The files that names of a list mean, in the list's folder: as they stand, without the blanks around them, with slashes
/// for backslashes, in other capitals or the other form of Unicode, by their last part alone. Never by a guess among several.
class Files {
public:
    explicit Files(QString folder) : m_folder(std::move(folder)) {}
    /// The path of the file; where there is none, that of the name as it stands.
    [[nodiscard]] QString find(const QString &name);

private:
    /// A file or folder of that folder whose name differs in form alone; empty: there is none, or there are several.
    [[nodiscard]] QString sameName(const QString &folder, const QString &name);
    [[nodiscard]] QString findExactly(const QString &name);
    [[nodiscard]] QString walk(const QString &name);

    QString m_folder;
    QHash<QString, QHash<QString, QStringList>> m_namesOfFolder; ///< by their folded form
};

} // namespace nurv::foreignList
