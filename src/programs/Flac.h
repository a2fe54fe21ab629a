// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace nurv::flac {

// `flac`. Nothing here runs it. Paths are absolute; each word is one argument.

[[nodiscard]] const ExternalProgram &program();

/// How it encodes.
struct Encoding {
    int level = 5; ///< 0 to 8; not passed with `lax`
    bool lax = false;
    bool keepForeignMetadata = false;
    bool verify = false;
    bool overwrite = false;
    /// For more than two channels of which nobody tells which is which.
    bool hasNoChannelMap = false;
};

/// Any file that it reads itself to FLAC.
[[nodiscard]] QStringList encodingArguments(const Encoding &encoding, const QString &source, const QString &output);
/// Whether it replaces a file in its output's place when it gets these.
[[nodiscard]] bool replacesOutput(const QStringList &arguments);
/// FLAC to WAV, or to AIFF when the format word says so.
[[nodiscard]] QStringList decodingArguments(const QString &format, bool keepForeignMetadata, bool throughErrors,
                                            const QString &source, const QString &output);

/// At its own level.
[[nodiscard]] ProgramStage plainEncoding(bool verify, const QString &input, const QString &output);
[[nodiscard]] ProgramStage encoding(const Encoding &encoding, const QString &input, const QString &output);
/// To a temporary WAV.
[[nodiscard]] ProgramStage decodingToWav(const QString &source, const QString &wav);
/// The same for an encoding to Opus, with status lines of its own.
[[nodiscard]] ProgramStage decodingToWavForOpus(const QString &source, const QString &wav);

//// Decodes the file and keeps nothing.
[[nodiscard]] QStringList testArguments(const QString &path);

// "x.wav: 45% complete, ratio=0.532".
[[nodiscard]] ChunkReport parseEncoding(QStringView chunk);
/// "x.flac: 45% complete".
[[nodiscard]] ChunkReport parseDecoding(QStringView chunk);
/// The same for `decodingToWav`.
[[nodiscard]] ChunkReport parseDecodingToWav(QStringView chunk);

/// Whether the text says that a source is damaged or cut short. It goes on after that,
/// when it was told to or when it takes what is there, and ends with status 0. Programs
/// that start it pass these words on.
[[nodiscard]] bool tellsOfDamage(QStringView text);
/// No marker that `tellsOfDamage` knows is longer.
inline constexpr qsizetype kLongestDamageMarker = 32;

} // namespace nurv::flac
