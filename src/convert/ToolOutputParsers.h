// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace nurv::toolOutput {

// What the conversion programs write, read chunk by chunk: a chunk is what one read
// of the pipe gave, with lines neither split nor joined, backspaces included.

/// What one chunk means to a row and to the report.
struct ChunkReport {
    std::optional<QString> status;  ///< the next status line; nothing: it stays
    std::optional<double> progress; ///< in percent, as it was written; below 0 when unknown; comes with `status`
    QString results;                ///< to be appended to the report
    bool repaintsTitle = false;     ///< the main line is set to the title again
};

/// Whether the text says that a source is damaged or cut short: flac goes on after
/// that, when it was told to or when it takes what is there, and ends with status 0.
[[nodiscard]] bool tellsOfDamage(QStringView text);
/// No marker that `tellsOfDamage` knows is longer.
inline constexpr qsizetype kLongestDamageMarker = 32;

/// How much of the text before a chunk can belong to a marker of a failure in it: the
/// question of `wavpack` has a path in its middle.
inline constexpr qsizetype kLongestErrorMarker = 8192;

/// The lines as a terminal ends up with them: backspaces and carriage returns take
/// back what stands before them in the line, so that of all figures the last is left.
[[nodiscard]] QString asOnATerminal(QStringView text);

/// `flac` encoding: "x.wav: 45% complete, ratio=0.532".
[[nodiscard]] ChunkReport parseFlacEncoding(QStringView chunk);
/// `flac` decoding: "x.flac: 45% complete".
[[nodiscard]] ChunkReport parseFlacDecoding(QStringView chunk);

// `shntool conv`: "Converting [x.wav] (3:00.00) --> [x.shn] :   0% ", backspaces,
// "  1% ", …, "100% OK".

/// To Shorten. A chunk with "Converting" or "OK" is in the report more than once.
[[nodiscard]] ChunkReport parseShortenEncoding(QStringView chunk);
/// From a file of `type` ("SHN", "APE") to FLAC, reported like `parseShortenEncoding`.
[[nodiscard]] ChunkReport parseFlacByShntool(QStringView chunk, const QString &type);
/// From Shorten.
[[nodiscard]] ChunkReport parseShortenDecoding(QStringView chunk);

// `wavpack`, `wvunpack`: "creating x.wv,  45% done...", backspaces, " 46% done...", ….

/// To WavPack.
[[nodiscard]] ChunkReport parseWavpackEncoding(QStringView chunk);
/// From WavPack: the status line is `label`, the figure and "%". Every chunk is in the
/// report twice.
[[nodiscard]] ChunkReport parseWavpackDecoding(QStringView chunk, const QString &label);
/// Whether `wavpack` gives up. `text` may be several chunks: a marker can be spread.
[[nodiscard]] bool wavpackTellsOfError(QStringView text);
/// Whether `wavpack` or `wvunpack` asks what nobody answers: may it replace a file?
[[nodiscard]] bool asksToOverwrite(QStringView text);

/// `ttaenc`: "Percent Progress: 45". Every chunk is in the report twice.
[[nodiscard]] ChunkReport parseTta(QStringView chunk, const QString &label);

/// `mac`: "Progress: 45.2% (12 seconds remaining, 27 seconds total)".
[[nodiscard]] ChunkReport parseMonkeysAudio(QStringView chunk, const QString &label);
/// Whether `mac` says that it failed. `text` may be several chunks.
[[nodiscard]] bool monkeysAudioTellsOfError(QStringView text);

// Decoding to the WAV file that an Apple Lossless encoding begins with.

/// `shntool`. The status line is set by every chunk; without a figure it says -1.
[[nodiscard]] ChunkReport parseShortenToWav(QStringView chunk);
/// `flac`.
[[nodiscard]] ChunkReport parseFlacToWav(QStringView chunk);
/// `mac`. Reports nothing.
[[nodiscard]] ChunkReport parseMonkeysAudioToWav(QStringView chunk);
/// `wvunpack`.
[[nodiscard]] ChunkReport parseWavpackToWav(QStringView chunk);

} // namespace nurv::toolOutput
