// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/Flac.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::shntool {

// `shntool`, the application's own. Nothing here runs it. Paths are absolute; each word is
// one argument.

[[nodiscard]] const ExternalProgram &program();

/// What it starts when it gets these arguments of one of the modes used here, for each source and the format:
///
///     source   what it reads in its own process: nothing;
///              WavPack: wvunpack; Monkey's Audio before 3.99: mac
///     format   WAV: nothing; Shorten: shorten; AIFF: sox; FLAC: flac
///
/// It knows sources by their first bytes, behind an ID3v2 tag, and so does this: a few are read. Of its own programs
/// (shntool-alac) nothing is told.
[[nodiscard]] QStringList startedBy(const QStringList &arguments);

/// Any file that it reads to Shorten.
[[nodiscard]] QStringList toShortenArguments(const QString &source, const QString &outputFolder);
/// Shorten or Monkey's Audio to FLAC. Of the encoding only level, verify and lax reach the
/// encoder, and lax drops the others.
[[nodiscard]] QStringList toFlacArguments(const flac::Encoding &encoding, const QString &source,
                                          const QString &outputFolder);
/// Shorten to "WAV" or "AIFF".
[[nodiscard]] QStringList fromShortenArguments(const QString &format, const QString &source,
                                               const QString &outputFolder);
/// Where these three have the source.
inline constexpr qsizetype kSourcePlace = 9;
/// Where `toFlacArguments` has the output folder.
inline constexpr qsizetype kFlacFolderPlace = 6;

/// Whether it knows the extension of a source, as written, and puts its own in the place of
/// it: behind others it puts its own.
[[nodiscard]] bool replacesExtension(const QString &extension);

/// The digest of a file's samples: a line "digest  [shntool]  name", the name without its folder.
[[nodiscard]] QStringList hashArguments(const QString &path);
/// The same of several files of the working folder, a line each; `names` as they stand there.
[[nodiscard]] QStringList hashListArguments(const QStringList &names);
/// The name that such an argument stands for.
[[nodiscard]] QString hashedName(const QString &argument);
/// How many words stand before the names.
inline constexpr qsizetype kHashListOptions = 2;

/// Shorten to a temporary WAV.
[[nodiscard]] ProgramStage shortenToWav(const QString &source, const QString &wav);
/// The same for an encoding to Opus, with status lines of its own.
[[nodiscard]] ProgramStage shortenToWavForOpus(const QString &source, const QString &wav);

/// All sources as one set whose borders are moved to sectors, in the folder of the first one. `format` is "shn", "flac",
/// "aiff" or "wav", in which `level` counts for nothing, or "FLAC", an encoder of its own with that level.
[[nodiscard]] QStringList fixArguments(const QString &format, int level, const QString &outputFolder,
                                       const QStringList &sources);
/// The names that it may give what it makes of a source: it says "-fixed" behind the name, and leaves an extension that
/// is not the one of what it finds in the file. `format` as in `fixArguments`.
[[nodiscard]] QStringList fixedNames(const QString &source, const QString &format);

// "Converting [x.wav] (3:00.00) --> [x.shn] :   0% ", backspaces, "  1% ", …, "100% OK".

/// What every conversion to a compressed format reports of a chunk: of one with "Converting" what stands before its
/// first ": ", one with "ERROR" or "OK" twice.
[[nodiscard]] QString conversionResults(QStringView chunk);
/// To Shorten. A chunk with "Converting" or "OK" is in the report more than once.
[[nodiscard]] ChunkReport parseToShorten(QStringView chunk);
/// From a file of `type` ("SHN", "APE") to FLAC, reported like `parseToShorten`.
[[nodiscard]] ChunkReport parseToFlac(QStringView chunk, const QString &type);
/// From Shorten.
[[nodiscard]] ChunkReport parseFromShorten(QStringView chunk);
/// For `shortenToWav`. The status line is set by every chunk; without a figure it says -1.
[[nodiscard]] ChunkReport parseShortenToWav(QStringView chunk);


// "Fixing [/in/x.wav] (3:00.00) --> [/out/x-fixed.flac] :   0% ", backspaces, "  1% ", …, "100% OK".

/// What stands before and behind the path of the source.
inline constexpr QStringView kFixing = u"Fixing [";
inline constexpr QStringView kFixingPathEnd = u"] (";

/// What a chunk of fixing means.
struct FixReport {
    QString text;                    ///< for the report: without backspaces at the ends, without figures in percent
    std::optional<QString> fileName; ///< the file that it tells of, without folder and extension
    std::optional<double> progress;  ///< in percent
};
[[nodiscard]] FixReport parseFixing(QStringView chunk);

/// Why fixing failed, as a line without a full stop; empty when the output does not say.
[[nodiscard]] QString reasonOfFailedFixing(QStringView output);

} // namespace nurv::shntool
