// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"
#include "support/FileSizeLimit.h"
#include "support/TestFolder.h"
#include "tags/TagsObject.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <optional>

namespace nurv::test {

/// A short sound in each format, by the format's own encoder, without tags.
QString writeMp3(const TestFolder &folder, const QString &name, const QStringList &encoderArguments = {});
QString writeWavpack(const TestFolder &folder, const QString &name, const QStringList &encoderArguments = {});
QString writeTaggableFlac(const TestFolder &folder, const QString &name, const QStringList &encoderArguments = {});
QString writeTaggableAiff(const TestFolder &folder, const QString &name);
/// A Monkey's Audio file with valid heads and no decodable sound: no encoder is at hand.
QString writeApe(const TestFolder &folder, const QString &name);

/// A record with every text set, each differently.
[[nodiscard]] TagsObject fullRecord();
[[nodiscard]] AlbumArt picture(int width, int height, const QColor &colour);
/// A picture that no compression makes smaller.
[[nodiscard]] AlbumArt noisePicture(int width, int height);
/// The picture of a PNG file of that image.
[[nodiscard]] AlbumArt artOf(const QImage &image);
/// Its pixels.
[[nodiscard]] QImage imageOf(const AlbumArt &picture);
[[nodiscard]] QByteArray encodedPicture(const QImage &image, const char *format);
[[nodiscard]] QByteArray encodedPicture(const AlbumArt &picture, const char *format);

/// One frame of an ID3v2.4 tag.
struct Id3Frame {
    QByteArray id;
    QByteArray payload;
};
/// The frames of the ID3v2 tag that stands first in the bytes.
[[nodiscard]] QList<Id3Frame> id3Frames(const QByteArray &file);
[[nodiscard]] int frameCount(const QList<Id3Frame> &frames, const QByteArray &id);
/// The texts of all UTF-8 frames with this id, in file order.
[[nodiscard]] QStringList frameTexts(const QList<Id3Frame> &frames, const QByteArray &id);

/// The messages that Qt's logging got while it lives.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    /// The texts of one category, in order.
    [[nodiscard]] QStringList texts(const QString &category) const;
};

/// The reason of the NurvFailure that `work` throws; nothing when it throws none.
template<typename Work>
[[nodiscard]] std::optional<QString> failureOf(const Work &work)
{
    try {
        work();
    } catch (const NurvFailure &failure) {
        return failure.reason();
    }
    return std::nullopt;
}

} // namespace nurv::test
