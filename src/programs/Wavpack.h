// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringView>

namespace nurv::wavpack {

// `wavpack` and `wvunpack`. Nothing here runs them. Paths are absolute.

[[nodiscard]] const ExternalProgram &encoder();
[[nodiscard]] const ExternalProgram &decoder();

/// `level` is "-f" or "-h".
[[nodiscard]] ProgramStage encoding(const QString &level, const QString &input, const QString &output);
/// To WAV. Replaces what is there only with `overwrite`.
[[nodiscard]] ProgramStage decoding(const QString &source, bool overwrite, const QString &output);
/// To the temporary WAV of an encoding to FLAC.
[[nodiscard]] ProgramStage decodingToWavForFlac(const QString &source, const QString &wav);
/// To the temporary WAV of another encoding.
[[nodiscard]] ProgramStage decodingToWav(const QString &source, const QString &wav);

/// Decodes the file and keeps nothing.
[[nodiscard]] QStringList testArguments(const QString &path);

// "creating x.wv,  45% done...", backspaces, " 46% done...", ….

[[nodiscard]] ChunkReport parseEncoding(QStringView chunk);
/// The status line is `label`, the figure and "%". Every chunk is in the report twice.
[[nodiscard]] ChunkReport parseDecoding(QStringView chunk, const QString &label);
/// For `decodingToWav`.
[[nodiscard]] ChunkReport parseDecodingToWav(QStringView chunk);

/// Whether `wavpack` gives up. `text` may be several chunks: a marker can be spread.
[[nodiscard]] bool tellsOfError(QStringView text);
/// Whether either asks what nobody answers: may it replace a file?
[[nodiscard]] bool asksToOverwrite(QStringView text);

} // namespace nurv::wavpack
