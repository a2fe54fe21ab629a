// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>

#include <memory>

namespace nurv {

/// A cover picture. Two pictures are equal when they are the same image object.
using AlbumArt = std::shared_ptr<const QImage>;

/// The picture in the bytes of a picture frame: PNG, JPEG, GIF, BMP, TIFF or WebP, known by their first
/// bytes, whatever their declared type; no other decoder ever sees them. None when they hold no such
/// picture, one whose decoder is not installed, or one beyond 256 MiB of pixels. Waits while other threads'
/// pictures take all of PictureMemory. Any thread.
[[nodiscard]] AlbumArt albumArtFromBytes(const QByteArray &bytes);

/// The file types that pictures are rendered to.
enum class ImageFileType { Png };

/// The picture as the bytes of a file of that type. `image` must not be null.
/// Throws NurvFailure when it cannot be rendered.
[[nodiscard]] QByteArray getBitmapDataForImage(const AlbumArt &image, ImageFileType fileType);

} // namespace nurv
