// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>

#include <memory>

namespace nurv {

/// A cover picture. Two pictures are equal when they are the same image object.
using AlbumArt = std::shared_ptr<const QImage>;

/// The picture in the bytes of a picture frame (PNG, JPEG and whatever other raster
/// format is installed; the bytes decide, not their declared type). None when they
/// hold no picture or one beyond 256 MiB of pixels. Any thread.
[[nodiscard]] AlbumArt albumArtFromBytes(const QByteArray &bytes);

/// The file types that pictures are rendered to.
enum class ImageFileType { Png };

/// The picture as the bytes of a file of that type. `image` must not be null.
/// Throws NurvFailure when it cannot be rendered.
[[nodiscard]] QByteArray getBitmapDataForImage(const AlbumArt &image, ImageFileType fileType);

} // namespace nurv
