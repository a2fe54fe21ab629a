// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>

namespace nurv {

// What programs write, read chunk by chunk: a chunk is what one read of the pipe gave,
// with lines neither split nor joined, backspaces included. Each program's file has
// its parsers; here is what they share.

/// What one chunk means to a row and to the report.
struct ChunkReport {
    std::optional<QString> status;  ///< the next status line; nothing: it stays
    std::optional<double> progress; ///< in percent, as it was written; below 0 when unknown; comes with `status`
    QString results;                ///< to be appended to the report
    bool repaintsTitle = false;     ///< the main line is set to the title again
};

namespace programOutput {

/// How much of the text before a chunk can belong to a marker of a failure in it: the
/// question of `wavpack` has a path in its middle.
inline constexpr qsizetype kLongestErrorMarker = 8192;

/// What a status line of a decoding to a temporary WAV begins with.
inline constexpr QStringView kToWav = u"Decoding to WAV: ";

/// The lines as a terminal ends up with them: backspaces and carriage returns take
/// back what stands before them in the line, a step up the line that was left, so that
/// of all figures the last is left. Other escape sequences vanish.
[[nodiscard]] QString asOnATerminal(QStringView text);

// For parsers.

/// The text before the first `marker`; all of it without one.
[[nodiscard]] QStringView before(QStringView text, QStringView marker);
/// The text between the first and the second `marker`, which must have a first one; what
/// follows that when there is no second.
[[nodiscard]] QStringView secondPiece(QStringView text, QStringView marker);
/// The text from the first digit on; empty without one.
[[nodiscard]] QStringView fromFirstDigit(QStringView text);
/// Sets progress and status: "label: 45.000000%" for the figure at the start of the text
/// before the first "%".
void showFigure(ChunkReport &report, QStringView text, const QString &label);

/// The last message in the text of one of the application's own programs, "name: message", without the name. Empty:
/// none.
[[nodiscard]] QString lastMessage(QStringView text, const QString &name);

/// A parser that is told what its status lines begin with, as one that is told nothing.
[[nodiscard]] std::function<ChunkReport(const QString &chunk)> labelled(ChunkReport (*parse)(QStringView chunk,
                                                                                             const QString &label),
                                                                        const QString &label);

/// A parser whose figures are shown only where they have grown by one percent since the last one shown, from 0 on.
/// Keeps count, so that each run of a program needs one of its own.
[[nodiscard]] std::function<ChunkReport(const QString &chunk)> inSteps(
    std::function<ChunkReport(const QString &chunk)> parse);

} // namespace programOutput

} // namespace nurv
