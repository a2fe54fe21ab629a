// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace nurv {

/// Puts the boxes of an MPEG-4 file into the order in which a player wants them.
///
///     ftyp [free] mdat moov [free] others  ──>  ftyp moov others mdat
///
/// The chunk offsets follow the sound to its new place; not a byte of the sound changes. What is
/// not understood beyond doubt is refused: damaged boxes, several movies or sounds, movie
/// fragments, chunk offsets that name no sound or would not fit their table.
class Mp4Optimizer {
public:
    /// Writes the optimised file into `targetPath`, an existing file, and through to the
    /// disk. Returns nothing on success, else why not; then the target holds anything. Throws
    /// TagsUnavailable when the process that does it fails. The file itself is only read.
    /// Blocks; the memory needed does not depend on the length of the sound. Any thread.
    [[nodiscard]] static std::optional<QString> optimize(const QString &path, const QString &targetPath);
    /// Optimises the file in its place, by way of a temporary file beside it: that is
    /// written, the file deleted, the temporary file moved. Throws NurvFailure:
    /// - "unable to optimize @% file" and "unable to delete file @%": the file is as it was;
    /// - "file @% was lost": it is whole, but has only the temporary name, which the log tells;
    /// - the text of Util::generateTempFileName;
    /// - TagsUnavailable: the file is as it was.
    static void optimizeInPlace(const QString &path);
    /// The last two steps of `optimizeInPlace`, with the same failures.
    static void replace(const QString &path, const QString &temporaryPath);
};

} // namespace nurv
