// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace nurv::dvda {

// `dvda`, the application's own. Nothing here runs it. Paths are absolute; each word is one argument.

[[nodiscard]] const ExternalProgram &program();

/// Makes the folders of a disc in `folder`, which may not be there yet, of WAV and FLAC files, and writes `log`.
[[nodiscard]] QStringList authoringArguments(const QString &log, const QString &folder, const QStringList &sources);

// "[Nurv]  Processing 00 /music/a.wav", a line for each file when the work on it begins.

/// What one chunk tells: a file has begun.
struct BegunFile {
    QString name;     ///< the last part of its path
    int progress = 0; ///< in percent; as if the file were done
};
/// Nothing for a chunk without such a line. The line is taken to open the chunk: of one that does not, number and name are
/// wrong ones. `sources`: how many there are.
[[nodiscard]] std::optional<BegunFile> parseAuthoring(QStringView chunk, int sources);

/// Why it failed, in its own words: the last line of its text that is its own. Empty: none.
[[nodiscard]] QString reasonOfFailure(QStringView text);

} // namespace nurv::dvda
