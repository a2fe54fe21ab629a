// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// What was read of a file with track names.
struct TrackNamesFile {
    /// `trackNamesOfSetList` of its text; nothing when it cannot be used.
    std::optional<QString> names;
    /// Why not, in a sentence.
    QString problem = {};
};

/// Reads a set list in any encoding (`decodeText`). Refused are what is no file, what is larger
/// than 50 MiB, an empty file, more than 100,000 names, and names of more than 10,000 characters. Logs
/// what failed. Blocks while it reads, for a second or two at most.
[[nodiscard]] TrackNamesFile readTrackNamesFile(const QString &path);

} // namespace nurv
