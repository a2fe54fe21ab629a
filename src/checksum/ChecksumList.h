// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv::checksumList {

// The texts of checksum lists: UTF-8, line feeds, a header that names the writer and
// the moment, an empty line, then one entry per file in the order given. Nothing here
// reads a file.

/// "2010-05-02 13:45:07 +0000": the time in its own offset from UTC.
[[nodiscard]] QString dateText(const QDateTime &moment);

/// The first two lines of an MD5 list.
[[nodiscard]] QString md5Header(const QString &version, const QDateTime &moment);
/// The first line of an ST5 list, which begins every entry with a line end.
[[nodiscard]] QString st5Header(const QString &version, const QDateTime &moment);
/// The first two lines of a FLAC fingerprint list.
[[nodiscard]] QString ffpHeader(const QString &version, const QDateTime &moment);

/// True for an empty list and when every path has the first one's folder.
[[nodiscard]] bool areAllSameDirectory(const QStringList &paths);

/// Whether a list, which has a line per file, can hold the name: a line break in it would begin an entry of
/// its own.
[[nodiscard]] bool canName(const QString &name);

/// The kinds of lists.
enum class ListKind { Md5, St5, Ffp };
/// Whether who reads a list of that kind, written by this program, gets the name of an entry back as it was: without the
/// blanks at its ends, say, it is that of another file.
[[nodiscard]] bool isReadBack(ListKind kind, const QString &name);
/// What there is to say about a file whose name is not: a line without a full stop.
[[nodiscard]] QString misreadText(const QString &path);
/// What is said of an ST5 or FFP list of files of several folders.
[[nodiscard]] QString bareNamesText();

/// Whether a file is a list, by its name.
[[nodiscard]] std::optional<ListKind> kindOfList(const QString &path);

/// Whether an ST5 list holds the file: by its extension, one of those that shntool reads.
[[nodiscard]] bool takesSt5(const QString &path);
/// Whether a fingerprint list holds the file: FLAC, by its extension.
[[nodiscard]] bool takesFfp(const QString &path);

/// How an MD5 list in `listFolder` names `path`: by its base name. When the listed
/// files lie in several folders, a file whose path begins with the text of
/// `listFolder`, but whose own folder is another one, is named by the rest of its
/// path, the leading slash included: readers join it to the list's folder.
[[nodiscard]] QString md5EntryName(const QString &path, const QString &listFolder, bool allInOneFolder);
/// One line of an MD5 list.
[[nodiscard]] QString md5Entry(const QString &digest, const QString &name);

/// The file name of an MD5 list: "md5sum.md5", or named after its folder.
[[nodiscard]] QString md5FileName(const QString &folder, bool namedAfterFolder);
/// The file name of an ST5 list: "checksum.st5", or named after its folder.
[[nodiscard]] QString st5FileName(const QString &folder, bool namedAfterFolder);
/// The file name of a fingerprint list with that extension: "fingerprint.<extension>",
/// or named after its folder.
[[nodiscard]] QString ffpFileName(const QString &folder, const QString &extension, bool namedAfterFolder);

} // namespace nurv::checksumList
