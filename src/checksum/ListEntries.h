// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace nurv::checksumList {

// The reading of checksum lists.

/// What stands between the digest and the name in what `shntool hash` writes.
inline constexpr QStringView kSt5Marker = u"  [shntool]  ";

/// The text of a list in UTF-8. Throws NurvFailure, whose reason is one line, when it cannot be read, is no UTF-8, is no
/// regular file, or larger than any list is: 128 MiB, 2,000,000 lines, 65,536 characters in a line.
[[nodiscard]] QString readList(const QString &path);
/// The bytes of a list of any encoding. Throws likewise.
[[nodiscard]] QByteArray readListBytes(const QString &path);
/// Throws for a text of more or longer lines than a list has: what is kept of each line takes many times its room.
void requireUsualLines(QStringView text);

/// Whether a reader of lists takes the character for the end of a line.
[[nodiscard]] bool endsLine(QChar character);
/// The pieces of the text between its line ends. Each of LF, CR, vertical tabulator, form feed, NEL and the two separators
/// of Unicode ends a line: CR and LF together give an empty line, and a line end at the end an empty one behind it.
[[nodiscard]] QStringList linesOf(QStringView text);

/// A line of a list that is neither empty nor a comment.
struct Entry {
    QString line;          ///< trimmed
    QString name = {};     ///< of an MD5 list not trimmed; empty when the line is no entry
    QString expected = {}; ///< the digest, trimmed; of an ST5 list the whole line counts

    bool hasMark = false;  ///< also before nothing

    [[nodiscard]] bool isEntry() const { return hasMark || !name.isEmpty(); }
};

/// Comments begin with "#" or ";" in the first column; "digest *name".
[[nodiscard]] std::vector<Entry> md5Entries(const QStringList &lines);
/// Comments begin with ";"; "digest  [shntool]  name".
[[nodiscard]] std::vector<Entry> st5Entries(const QStringList &lines);
/// Comments begin with ";"; "name:digest".
[[nodiscard]] std::vector<Entry> ffpEntries(const QStringList &lines);

/// The file that a list in that folder means: the name behind the folder, also when it begins with a slash.
[[nodiscard]] QString listedPath(const QString &listFolder, const QString &name);

} // namespace nurv::checksumList
