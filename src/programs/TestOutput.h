// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

namespace nurv::testOutput {

// What is reported of programs that decode a file only to test it.

/// "x.flac: testing, 100% complete" and a line end.
[[nodiscard]] QString wholeLine(const QString &name);

/// The end of a log of `flac -t`: its lines from the last one with "% complete" on. A log without such a line is whole,
/// behind a line end.
[[nodiscard]] QString tailOf(const QString &log);

/// What a chunk of `flac -t` means. `name`: of the file, as the report has it.
struct FlacChunk {
    double progress = 0.0; ///< -1 where there is none to be read
    bool hasProgress = false;
    QString lines = {}; ///< for the report
};
[[nodiscard]] FlacChunk parseFlac(QStringView chunk, const QString &name);

/// The end of a log of `mac -v`: behind `title`, its lines from the last one with "Progress: " on, each with a line end.
/// A log without such a line is whole, without the title.
[[nodiscard]] QString tailOfMac(const QString &log, const QString &title);

} // namespace nurv::testOutput
