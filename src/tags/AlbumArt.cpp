// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AlbumArt.h"

#include "platform/NurvFailure.h"
#include "tags/PictureMemory.h"
#include "tags/TagsLog.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

#include <cstdint>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// Room for 8192 x 8192 pixels; a few bytes of a hostile file can ask for far more.
constexpr int kPixelLimitMiB = 256;
constexpr std::int64_t kPixelLimit = std::int64_t{kPixelLimitMiB} << 20;
// What decoders take for themselves, at worst: the coefficients of a progressive JPEG.
constexpr std::int64_t kDecoderBytesPerPixel = 8;
constexpr std::int64_t kMostBytesPerPixel = 8;

struct Signature {
    QByteArrayView start;
    const char *format; ///< the name of Qt's reader
};

/// The reader for these bytes; nothing for pictures of other kinds.
const char *formatOf(QByteArrayView bytes)
{
    static constexpr Signature kSignatures[] = {{"\x89PNG\r\n\x1a\n", "png"}, {"\xff\xd8\xff", "jpeg"},
                                                {"GIF87a", "gif"},             {"GIF89a", "gif"},
                                                {"BM", "bmp"}};
    for (const Signature &signature : kSignatures) {
        if (bytes.startsWith(signature.start))
            return signature.format;
    }
    if (bytes.startsWith(QByteArrayView("II*\0", 4)) || bytes.startsWith(QByteArrayView("MM\0*", 4)))
        return "tiff";
    if (bytes.startsWith("RIFF") && bytes.size() >= 12 && bytes.sliced(8).startsWith("WEBP"))
        return "webp";
    return nullptr;
}

/// The memory that decoding takes, by the picture's head; nothing when it is too much or unknown.
std::optional<std::int64_t> memoryFor(const QImageReader &reader)
{
    const QSize size = reader.size();
    if (size.isEmpty())
        return std::nullopt;
    const int bits = QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel();
    const std::int64_t pixelSize = bits == 0 ? kMostBytesPerPixel : (bits + 7) / 8;
    const std::int64_t pixels = std::int64_t{size.width()} * size.height();
    if (pixels > kPixelLimit)
        return std::nullopt;
    // Of unknown depth: the decoder is bound by the limit of its own.
    if (bits != 0 && pixels * pixelSize > kPixelLimit)
        return std::nullopt;
    return pixels * (pixelSize + kDecoderBytesPerPixel);
}

AlbumArt leaveOut(const QString &reason)
{
    qCWarning(tagsLog, "Picture left out: %s", qUtf8Printable(reason));
    return nullptr;
}

} // namespace

AlbumArt albumArtFromBytes(const QByteArray &bytes)
{
    static std::once_flag limitSet;
    std::call_once(limitSet, [] { QImageReader::setAllocationLimit(kPixelLimitMiB); });

    if (bytes.isEmpty())
        return nullptr;
    const char *const format = formatOf(bytes);
    if (format == nullptr)
        return leaveOut(u"it is of no known kind"_s);
    QBuffer buffer;
    buffer.setData(bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return nullptr;
    try {
        QImageReader reader(&buffer, format);
        reader.setAutoDetectImageFormat(false);
        reader.setDecideFormatFromContent(false);
        if (!reader.canRead())
            return leaveOut(u"there is no decoder for %1, or it is damaged"_s.arg(QString::fromLatin1(format)));
        const std::optional<std::int64_t> memory = memoryFor(reader);
        if (!memory)
            return leaveOut(u"it is too large, or does not tell its size"_s);
        const PictureMemory::Share share = PictureMemory::take(*memory);
        QImage image = reader.read();
        if (image.isNull())
            return leaveOut(reader.errorString());
        return std::make_shared<const QImage>(std::move(image));
    } catch (const std::exception &failure) {
        return leaveOut(QString::fromUtf8(failure.what()));
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
