// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/CoverPicture.h"
#include "tags/PictureMemory.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace nurv {

/// The pixels of a picture, and their share of PictureMemory, which is held while this lives.
struct DecodedPicture {
    PictureMemory::Share share;
    QImage image;
};

/// Decodes the bytes of a picture: PNG, JPEG, GIF, BMP, TIFF or WebP, known by their first bytes, whatever
/// their declared type; no other decoder ever sees them. Throws NurvFailure for what is no such picture,
/// one whose decoder is not installed, or one beyond 256 MiB of pixels; the reason ends a sentence. Waits while
/// other threads' pictures take all of PictureMemory. Any thread.
[[nodiscard]] DecodedPicture decodePicture(const QByteArray &bytes);

/// "png", "jpeg", "gif", "bmp", "tiff" or "webp" by the first bytes; empty for anything else.
[[nodiscard]] QString pictureFormat(const QByteArray &bytes);

/// The picture in the bytes of a picture frame, or why there is none that could be used.
struct PictureReading {
    AlbumArt picture;
    std::optional<QString> fault; ///< the end of a sentence; nothing for no bytes at all
};

/// Decodes the bytes once, to see that they can be, and keeps them as they are. Never throws; waits like
/// `decodePicture`.
[[nodiscard]] PictureReading readPicture(const QByteArray &bytes);

/// The file types that pictures are rendered to.
enum class ImageFileType { Png };

/// The picture as the bytes of a file of that type. `picture` must not be null. Throws NurvFailure when
/// it cannot be decoded or rendered. Waits like `decodePicture`.
[[nodiscard]] QByteArray getBitmapDataForImage(const AlbumArt &picture, ImageFileType fileType);

} // namespace nurv
