// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tags/AlbumArt.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace nurv {

/// `readPicture` of a picture that comes from anywhere, by a process of its own where TagsProcess is set up. Never
/// throws; blocks, any thread.
[[nodiscard]] PictureReading examinePicture(const QByteArray &bytes);

/// The same of a file of at most 64 MiB. The fault of one that cannot be read says why.
[[nodiscard]] PictureReading examinePictureFile(const QString &path);

/// The picture, made as much smaller as it has to be to fit into `box`; for the eye alone. Null for what cannot be
/// decoded. By a process of its own where TagsProcess is set up; blocks, any thread.
[[nodiscard]] QImage pictureView(const QByteArray &bytes, QSize box);

/// What the name of a file with these bytes ends in: "png", "jpg", "gif", "tiff", "webp", "bmp"; empty for what is no
/// picture.
[[nodiscard]] QString pictureExtension(const QByteArray &bytes);

/// "a PNG of 600 × 600".
[[nodiscard]] QString pictureWords(const CoverPicture &picture);

} // namespace nurv
