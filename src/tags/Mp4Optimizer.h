// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/Mp4Boxes.h"
#include "tags/Mp4Movie.h"
#include "tags/TagEditStream.h"

#include <QString>

#include <optional>

namespace nurv {

/// Puts the boxes of an MPEG-4 file into the order in which a player wants them.
///
///     ftyp [free] mdat moov [free] mdat others tail  ──>  ftyp moov others mdat mdat tail
///
/// The chunk offsets of all tracks follow the sound to its new place; not a byte of the sound
/// changes, nor of the tail. What is not understood beyond doubt is refused: damaged boxes, files cut
/// short, several movies, movie fragments, chunk offsets that name no sound.
class Mp4Optimizer {
public:
    /// Edits the stream into the new order, with `movie` in the place of the file's movie box. Edits
    /// nothing when that is the file as it stands. Returns nothing on success, else why not; then
    /// the stream is as it was.
    [[nodiscard]] static std::optional<QString> putInOrder(TagEditStream &stream, const Mp4Layout &layout,
                                                           Mp4Movie movie);

    /// Makes the edits the file's contents by way of a temporary file beside it, which is written
    /// through to the disk and takes the file's place; does nothing when there are none. Returns nothing
    /// on success, else why the temporary file cannot be written; then the file is as it was. Throws
    /// like `replace`, and the text of Util::generateTempFileName. Blocks.
    [[nodiscard]] static std::optional<QString> commit(TagEditStream &stream);

    /// Deletes the file and gives the temporary file its name. The system does both in one step, so that
    /// at no time there is no file of that name. Throws NurvFailure, then the file is as it was, and there is
    /// no temporary file: "unable to delete file @%", or "file @% was lost" when that had gone already.
    static void replace(const QString &path, const QString &temporaryPath);
};

} // namespace nurv
