// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AlbumArt.h"

#include "platform/NurvFailure.h"
#include "tags/TagsLog.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

#include <mutex>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// Room for 8192 x 8192 pixels; a few bytes of a hostile file can ask for far more.
constexpr int kPixelLimitMiB = 256;

} // namespace

AlbumArt albumArtFromBytes(const QByteArray &bytes)
{
    static std::once_flag limitSet;
    std::call_once(limitSet, [] { QImageReader::setAllocationLimit(kPixelLimitMiB); });

    QBuffer buffer;
    buffer.setData(bytes);
    if (bytes.isEmpty() || !buffer.open(QIODevice::ReadOnly))
        return nullptr;
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // A vector picture is a document that can name other files of the machine.
    if (reader.format().startsWith("svg") || reader.format().startsWith("pdf"))
        return nullptr;
    try {
        QImage image = reader.read();
        if (image.isNull()) {
            qCWarning(tagsLog, "Picture left out: %s", qUtf8Printable(reader.errorString()));
            return nullptr;
        }
        return std::make_shared<const QImage>(std::move(image));
    } catch (const std::exception &failure) {
        qCWarning(tagsLog, "Picture left out: %s", failure.what());
        return nullptr;
    }
}

QByteArray getBitmapDataForImage(const AlbumArt &image, ImageFileType fileType)
{
    Q_ASSERT(image != nullptr);
    switch (fileType) {
    case ImageFileType::Png: break;
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    if (!image || !writer.write(*image))
        throw NurvFailure(u"Unable to render the picture: %1"_s.arg(writer.errorString()));
    return buffer.data();
}

} // namespace nurv
