// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::shntool {

// The modes of `shntool` that look at files and edit them: its command lines and what it writes. `format` is "shn",
// "flac", "aiff" or "wav". Nothing here runs it.

[[nodiscard]] QStringList lengthArguments(const QStringList &sources);
[[nodiscard]] QStringList informationArguments(const QStringList &sources);
[[nodiscard]] QStringList comparisonArguments(const QStringList &sources);
[[nodiscard]] QStringList cueSheetArguments(const QStringList &sources);

/// Silence off both ends of each source.
[[nodiscard]] QStringList trimArguments(const QString &outputFolder, const QString &format, const QStringList &sources);
/// Silence behind the sound, up to the end of a sector.
[[nodiscard]] QStringList padArguments(const QString &outputFolder, const QString &format, const QString &source);
/// The sound without what its WAV header holds besides.
[[nodiscard]] QStringList stripArguments(const QString &outputFolder, const QString &format, const QString &source);
[[nodiscard]] QStringList joinArguments(const QString &outputFolder, const QString &format, const QStringList &sources);
/// `points`: a file with lengths or a cue sheet.
[[nodiscard]] QStringList splitArguments(const QString &points, const QString &format, const QString &outputFolder,
                                         const QString &source);
/// Where the edits of each source (trim, pad, strip) have their folder, their format and the first source.
inline constexpr qsizetype kEditFolderPlace = 2;
inline constexpr qsizetype kEditFormatPlace = 4;
inline constexpr qsizetype kEditSourcePlace = 7;
/// The same of join.
inline constexpr qsizetype kJoinFormatPlace = 2;
inline constexpr qsizetype kJoinFolderPlace = 5;
inline constexpr qsizetype kJoinSourcePlace = 8;

/// The names that it may give what it makes of a source: `ending` ("-trimmed", "-padded", "-stripped") behind the name,
/// and it leaves an extension that is not the one of what it finds in the file.
[[nodiscard]] QStringList editedNames(const QString &source, const QString &ending, const QString &format);
[[nodiscard]] QString joinedName(const QString &format);
/// The most pieces that it makes of a file.
inline constexpr int kMostPieces = 256;
/// The piece with that number, from 1 on.
[[nodiscard]] QString pieceName(int number, const QString &format);

/// What a piece of output of an edit means. Texts are without backspaces at their ends.
struct EditReport {
    QString text;                   ///< the piece
    std::optional<QString> percent; ///< as it was written
    std::optional<double> progress; ///< the same as a number
};
[[nodiscard]] EditReport parseEdit(QStringView chunk);

/// Whether a line is no result, but what it says of itself or of a file.
[[nodiscard]] bool isMessage(QStringView line);
/// The lines with which it tells of problems, joined by line feeds.
[[nodiscard]] QString problemLines(QStringView output);

/// Why a run failed.
struct Problem {
    QString file; ///< the path of the source that it was at, as the program shows it; empty when it named none
    QString text; ///< one line without a full stop, mostly in the program's words; empty when it said nothing

    /// The text, behind the name of the file.
    [[nodiscard]] QString withFile() const;
};
/// The last problem that says more than that something failed, else the last one.
[[nodiscard]] Problem lastProblem(QStringView output);

} // namespace nurv::shntool
