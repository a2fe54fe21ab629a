// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::cdda2wav {

// `cdda2wav`, the distribution's icedax. Nothing here runs it.

[[nodiscard]] const ExternalProgram &program();

/// Of an audio CD there are no more: the table of contents has two decimal digits for the number (IEC 60908).
inline constexpr int kLastTrack = 99;

/// The first and the last of the tracks that a run reads, both counted.
struct TrackRange {
    int first = 0;
    int last = 0;

    [[nodiscard]] int count() const { return last - first + 1; }
    [[nodiscard]] bool isSingle() const { return last - first < 1; }
};

/// The range of "1+3"; nothing unless these are tracks that a disc can have.
[[nodiscard]] std::optional<TrackRange> trackRange(QStringView text);
/// As the option -t takes it. Any numbers.
[[nodiscard]] QString rangeText(const TrackRange &range);

/// Reads the tracks with paranoia into WAV files of the working folder: one of each, or one of all. `address`: what
/// follows "dev=".
[[nodiscard]] QStringList extractionArguments(const QString &range, bool isOneFile, const QString &address);
/// The address in such arguments.
[[nodiscard]] QString addressOf(const QStringList &arguments);

/// What such a run calls the file of all it reads: "audio.wav".
[[nodiscard]] QString fileName();
/// What it calls the file of one track: "audio_07.wav".
[[nodiscard]] QString fileName(int track);
/// The names that a run may give to the file of one track of the range, the usual first: of a single track the program
/// has called it either way, by its version.
[[nodiscard]] QStringList trackFileNames(const TrackRange &range, int track);
/// Every name under which a run writes.
[[nodiscard]] QStringList writtenNames(const TrackRange &range, bool isOneFile);

// The parsers. It tells its progress by "42%" after a carriage return, among figures of the overlap in paranoia mode:
// " 0/ 2/ 1/     12  42%".

/// The chunk less a percentage at its end, and less the line ends at both. Of one that a cut goes through the figure
/// stays, in the report only.
[[nodiscard]] QString stripPercent(QStringView chunk);
/// The texts before the "%" of every word that has one, in their order.
[[nodiscard]] QStringList percentages(QStringView chunk);
/// Whether the text holds the summary of a track: "0 rderr, 0 skip, 0 atom".
[[nodiscard]] bool isEndOfTrack(QStringView text);

/// Reads the output of one run, wherever its chunks are cut: a word or a summary that a cut goes through counts with
/// the chunk that completes it. A percentage counts as soon as its sign is there, since nothing follows it for a while.
class OutputReader {
public:
    struct Reading {
        QStringList percentages; ///< see `percentages`
        int endedTracks = 0;     ///< summaries
    };

    [[nodiscard]] Reading read(QStringView chunk);

private:
    QString m_word;    ///< the last one so far, when it may go on
    QString m_summary; ///< the end of what was read, when it may be the beginning of one
};

/// The last line that tells something besides progress; empty without one. For a run that failed.
[[nodiscard]] QString lastLine(QStringView output);

/// What the log of a run holds: from the first time that the program names itself on, else everything.
[[nodiscard]] QString logText(const QString &output);

} // namespace nurv::cdda2wav
