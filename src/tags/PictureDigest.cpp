// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/PictureDigest.h"

#include "base/NurvFailure.h"
#include "tags/AlbumArt.h"
#include "tags/MetadataBytes.h"
#include "tags/TagsProcess.h"

#include <optional>

namespace nurv {

namespace {

QByteArray pixelDigest(const QImage &decoded)
{
    const bool isDeep = decoded.depth() > 32 || decoded.format() == QImage::Format_Grayscale16;
    const QImage image = decoded.convertToFormat(isDeep ? QImage::Format_RGBA64 : QImage::Format_ARGB32);
    const QByteArray pixels =
        QByteArray::fromRawData(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
    return metadataDigest(pixels) + QByteArray::number(image.width());
}

} // namespace

QByteArray pictureDigest(const QByteArray &picture)
{
    if (const std::optional<QByteArray> digest = TagsProcess::pictureDigest(picture))
        return *digest;
    try {
        const DecodedPicture decoded = decodePicture(picture);
        return pixelDigest(decoded.image);
    } catch (const NurvFailure &) {
        return {}; // no picture
    }
}

} // namespace nurv
