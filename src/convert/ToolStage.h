// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "convert/ToolOutputParsers.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>

namespace nurv {

/// One run of a program of the resource folder within a conversion: its command line, how
/// its output is read, and when it is ended.
struct ToolStage {
    QString name;
    QStringList arguments;
    std::function<toolOutput::ChunkReport(const QString &chunk)> parse;
    /// Whether the end of the output so far tells of a failure: the job's error flag is set.
    /// May be empty.
    std::function<bool(QStringView text)> tellsOfError;
    /// The run is ended as soon as the error flag is set.
    bool stopsOnError = true;
    /// The run is ended as soon as the job is cancelled.
    bool stopsOnCancel = true;
    /// A file in the output's place is replaced without a question, where the batch leaves
    /// that to the program.
    bool replacesOutput = false;
    /// A status other than 0 makes the job fail when it stops. Where it does not, it still
    /// keeps the source.
    bool looksAtExitStatus = true;
};

namespace toolStages {

// Paths are absolute. Nothing here runs a program.

/// `wavpack`; `level` is "-f" or "-h".
[[nodiscard]] ToolStage encodeWavpack(const QString &level, const QString &input, const QString &output);
/// `ttaenc`.
[[nodiscard]] ToolStage encodeTta(const QString &input, const QString &output);
/// `mac`; `level` is 1000, 2000, ... 5000.
[[nodiscard]] ToolStage encodeMonkeysAudio(const QString &level, const QString &input, const QString &output);
/// `flac`, at its own level.
[[nodiscard]] ToolStage encodeFlac(bool verify, const QString &input, const QString &output);

/// `wvunpack` to WAV. Replaces what is there only with `overwrite`.
[[nodiscard]] ToolStage decodeWavpack(const QString &source, bool overwrite, const QString &output);
/// `ttaenc`, which sees by the source that it is to decode.
[[nodiscard]] ToolStage decodeTta(const QString &source, const QString &output);
/// `mac`.
[[nodiscard]] ToolStage decodeMonkeysAudio(const QString &source, const QString &output);
/// `shorten`, which writes nothing while it works.
[[nodiscard]] ToolStage encodeShorten(const QString &input, const QString &output);
/// `wvunpack` to the temporary WAV of an encoding to FLAC.
[[nodiscard]] ToolStage wavpackToWavForFlac(const QString &source, const QString &wav);

// To the temporary WAV of an encoding to Apple Lossless: neither their status nor a
// cancelled job is looked at while they run.

[[nodiscard]] ToolStage shortenToWav(const QString &source, const QString &wav);
[[nodiscard]] ToolStage flacToWav(const QString &source, const QString &wav);
[[nodiscard]] ToolStage monkeysAudioToWav(const QString &source, const QString &wav);
[[nodiscard]] ToolStage wavpackToWav(const QString &source, const QString &wav);
/// For encoders that cannot read TTA.
[[nodiscard]] ToolStage ttaToWav(const QString &source, const QString &wav);

} // namespace toolStages

} // namespace nurv
