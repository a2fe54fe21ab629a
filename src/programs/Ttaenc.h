// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringView>

namespace nurv::ttaenc {

// `ttaenc`, the application's own, which sees by its source whether it is to encode or to
// decode. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

[[nodiscard]] ProgramStage encoding(const QString &input, const QString &output);
/// To WAV.
[[nodiscard]] ProgramStage decoding(const QString &source, const QString &output);
/// To the temporary WAV of an encoding.
[[nodiscard]] ProgramStage decodingToWav(const QString &source, const QString &wav);

/// Decodes the file and keeps nothing.
[[nodiscard]] QStringList testArguments(const QString &path);

/// "Percent Progress: 45". Every chunk is in the report twice.
[[nodiscard]] ChunkReport parse(QStringView chunk, const QString &label);

} // namespace nurv::ttaenc
