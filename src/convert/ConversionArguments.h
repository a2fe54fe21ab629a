// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace nurv::conversionArguments {

// The command lines of the conversions, each word one argument. Nothing here runs a
// program or reads a control. Paths are absolute.

/// Where the command lines of shntool below have the source.
inline constexpr qsizetype kShntoolSource = 9;
/// Where `flacByShntool` has the output folder.
inline constexpr qsizetype kFlacByShntoolFolder = 6;

/// How `flac` encodes.
struct FlacEncoding {
    int level = 5; ///< 0 to 8; not passed with `lax`
    bool lax = false;
    bool keepForeignMetadata = false;
    bool verify = false;
    bool overwrite = false;
};

/// `flac`: any file that it reads itself to FLAC.
[[nodiscard]] QStringList encodeFlac(const FlacEncoding &encoding, const QString &source, const QString &output);

/// `shntool`: Shorten or Monkey's Audio to FLAC. Of the encoding only level, verify
/// and lax reach the encoder, and lax drops the others.
[[nodiscard]] QStringList flacByShntool(const FlacEncoding &encoding, const QString &source,
                                        const QString &outputFolder);

/// `shntool`: any file that it reads to Shorten.
[[nodiscard]] QStringList encodeShorten(const QString &source, const QString &outputFolder);

/// `flac`: FLAC to WAV, or to AIFF when the format word says so.
[[nodiscard]] QStringList decodeFlac(const QString &format, bool keepForeignMetadata, bool throughErrors,
                                     const QString &source, const QString &output);
/// The extension of the file that `decodeFlac` makes for the format word.
[[nodiscard]] QString decodedExtension(const QString &format);

/// The name that `shntool` gives to what it makes of a source with `extension`: behind an
/// extension that it does not know, as written, it puts its own.
[[nodiscard]] QString shntoolOutput(const QString &source, const QString &outputFolder, const QString &extension);

/// `shntool`: Shorten to "WAV" or "AIFF".
[[nodiscard]] QStringList decodeShorten(const QString &format, const QString &source, const QString &outputFolder);

} // namespace nurv::conversionArguments
