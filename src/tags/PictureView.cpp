// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tags/PictureView.h"

#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileDescriptor.h"
#include "tags/TagsProcess.h"

#include <QFile>

#include <cerrno>
#include <exception>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qint64 kLargestFile = qint64{64} << 20;

} // namespace

PictureReading examinePicture(const QByteArray &bytes)
{
    try {
        if (std::optional<PictureReading> asked = TagsProcess::examinePicture(bytes))
            return *std::move(asked);
        return readPicture(bytes);
    } catch (const NurvFailure &failure) {
        return {.picture = nullptr, .fault = failure.reason()};
    } catch (const std::exception &failure) {
        return {.picture = nullptr, .fault = QString::fromUtf8(failure.what())};
    }
}

PictureReading examinePictureFile(const QString &path)
{
    // Whoever opens a pipe waits for who writes to it.
    const FileDescriptor opened(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!opened.isOpen())
        return {.picture = nullptr, .fault = systemErrorText(errno)};
    struct stat facts = {};
    if (::fstat(opened.get(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return {.picture = nullptr, .fault = u"it is no regular file"_s};
    QFile file;
    if (!file.open(opened.get(), QIODevice::ReadOnly))
        return {.picture = nullptr, .fault = file.errorString()};
    if (file.size() > kLargestFile)
        return {.picture = nullptr, .fault = u"it is larger than 64 MiB"_s};
    const QByteArray bytes = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return {.picture = nullptr, .fault = file.errorString()};
    if (bytes.size() > kLargestFile)
        return {.picture = nullptr, .fault = u"it is larger than 64 MiB"_s};
    if (bytes.isEmpty())
        return {.picture = nullptr, .fault = u"it is empty"_s};
    return examinePicture(bytes);
}

QImage pictureView(const QByteArray &bytes, QSize box)
{
    try {
        if (std::optional<QImage> asked = TagsProcess::scaledPicture(bytes, box))
            return *std::move(asked);
        const DecodedPicture decoded = decodePicture(bytes);
        const bool isLarger = decoded.image.width() > box.width() || decoded.image.height() > box.height();
        const QImage small =
            isLarger ? decoded.image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation) : decoded.image;
        return small.convertToFormat(QImage::Format_ARGB32);
    } catch (const std::exception &) {
        return {}; // why not was told when it was examined
    }
}

QString pictureExtension(const QByteArray &bytes)
{
    const QString format = pictureFormat(bytes);
    return format == u"jpeg" ? u"jpg"_s : format;
}

QString pictureWords(const CoverPicture &picture)
{
    const QString format = pictureFormat(picture.bytes()).toUpper();
    return u"%1 of %2 × %3"_s.arg(format.isEmpty() ? u"picture"_s : format)
        .arg(picture.size().width())
        .arg(picture.size().height());
}

} // namespace nurv
