// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"
#include "programs/ProgramStage.h"

#include <QString>
#include <QStringView>

namespace nurv::monkeysAudio {

// `mac`, the application's own. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

/// `level` is 1000, 2000, ... 5000.
[[nodiscard]] ProgramStage encoding(const QString &level, const QString &input, const QString &output);
/// To WAV.
[[nodiscard]] ProgramStage decoding(const QString &source, const QString &output);
/// To the temporary WAV of an encoding.
[[nodiscard]] ProgramStage decodingToWav(const QString &source, const QString &wav);

/// Decodes the file and keeps nothing.
[[nodiscard]] QStringList testArguments(const QString &path);

/// "Progress: 45.2% (12 seconds remaining, 27 seconds total)".
[[nodiscard]] ChunkReport parse(QStringView chunk, const QString &label);
/// For `decodingToWav`. Reports nothing.
[[nodiscard]] ChunkReport parseDecodingToWav(QStringView chunk);
/// Whether it says that it failed. `text` may be several chunks.
[[nodiscard]] bool tellsOfError(QStringView text);

} // namespace nurv::monkeysAudio
