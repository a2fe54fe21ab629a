// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/AlbumArt.h"

#include "base/NurvFailure.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

#include <cstdint>
#include <exception>
#include <mutex>
#include <new>

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

} // namespace

QString pictureFormat(const QByteArray &bytes)
{
    return QString::fromLatin1(formatOf(bytes));
}

DecodedPicture decodePicture(const QByteArray &bytes)
{
    static std::once_flag limitSet;
    std::call_once(limitSet, [] { QImageReader::setAllocationLimit(kPixelLimitMiB); });

    const char *const format = formatOf(bytes);
    if (format == nullptr)
        throw NurvFailure(u"it is of no known kind"_s);
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
    if (!reader.canRead())
        throw NurvFailure(u"there is no decoder for %1, or it is damaged"_s.arg(QString::fromLatin1(format)));
    const std::optional<std::int64_t> memory = memoryFor(reader);
    if (!memory)
        throw NurvFailure(u"it is too large, or does not tell its size"_s);
    DecodedPicture decoded{.share = PictureMemory::take(*memory), .image = {}};
    decoded.image = reader.read();
    if (decoded.image.isNull())
        throw NurvFailure(u"it cannot be decoded: %1"_s.arg(reader.errorString()));
    return decoded;
}

PictureReading readPicture(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {};
    try {
        const DecodedPicture decoded = decodePicture(bytes);
        return {.picture = std::make_shared<const CoverPicture>(bytes, decoded.image.size(), decoded.image.bitPlaneCount()),
                .fault = {}};
    } catch (const NurvFailure &failure) {
        return {.picture = nullptr, .fault = failure.reason()};
    } catch (const std::bad_alloc &) {
        return {.picture = nullptr, .fault = u"there is not enough memory for it"_s};
    } catch (const std::exception &failure) {
        return {.picture = nullptr, .fault = QString::fromUtf8(failure.what())};
    }
}

QByteArray getBitmapDataForImage(const AlbumArt &picture, ImageFileType fileType)
{
    Q_ASSERT(picture != nullptr);
    switch (fileType) {
    case ImageFileType::Png: break;
    }
    if (!picture)
        throw NurvFailure(u"Unable to render the picture: there is none"_s);
    // All files of an album get the same picture.
    constexpr qsizetype kMostKept = qsizetype{32} << 20;
    static std::mutex lock;
    static QByteArray lastBytes;
    static QByteArray lastPng;
    {
        const std::scoped_lock guard(lock);
        if (!lastPng.isEmpty() && lastBytes == picture->bytes())
            return lastPng;
    }
    try {
        const DecodedPicture decoded = decodePicture(picture->bytes());
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, "png");
        if (!writer.write(decoded.image))
            throw NurvFailure(writer.errorString());
        if (picture->bytes().size() + buffer.data().size() <= kMostKept) {
            const std::scoped_lock guard(lock);
            lastBytes = picture->bytes();
            lastPng = buffer.data();
        }
        return buffer.data();
    } catch (const NurvFailure &failure) {
        throw NurvFailure(u"Unable to render the picture: %1"_s.arg(failure.reason()));
    } catch (const std::bad_alloc &) {
        throw NurvFailure(u"Unable to render the picture: there is not enough memory for it"_s);
    }
}

} // namespace nurv
