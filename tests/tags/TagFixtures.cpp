// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagFixtures.h"

#include "support/AudioFixtures.h"
#include "support/TestProgram.h"

#include <QBuffer>
#include <QtEndian>

#include <gtest/gtest.h>

#include <mutex>
#include <random>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr SoundShape kShortSound = {.seconds = 0.5};

QString encode(const TestFolder &folder, const QString &name, const QString &program, const QStringList &before,
               const QStringList &between)
{
    const QString wav = folder.path(u"source-of-fixtures.wav"_s);
    if (!folder.exists(u"source-of-fixtures.wav"_s))
        writeWav(wav, kShortSound);
    const QString path = folder.path(name);
    const ProgramResult result = runProgram(program, before + QStringList{wav} + between + QStringList{path});
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(program) << ": " << result.errors.constData();
    return path;
}

template<typename Number>
void append(QByteArray &bytes, Number number)
{
    const Number little = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&little), sizeof little);
}

struct CapturedText {
    QString category;
    QString text;
};

std::mutex captureMutex;
QList<CapturedText> *capturedTexts = nullptr;
QtMessageHandler formerHandler = nullptr;

void capture(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    const std::lock_guard lock(captureMutex);
    if (capturedTexts != nullptr)
        capturedTexts->append({QString::fromUtf8(context.category), text});
}

} // namespace

QString writeMp3(const TestFolder &folder, const QString &name, const QStringList &encoderArguments)
{
    return encode(folder, name, u"lame"_s, QStringList{u"--quiet"_s} + encoderArguments, {});
}

QString writeWavpack(const TestFolder &folder, const QString &name, const QStringList &encoderArguments)
{
    return encode(folder, name, u"wavpack"_s, QStringList{u"-q"_s, u"-y"_s} + encoderArguments, {u"-o"_s});
}

QString writeTaggableFlac(const TestFolder &folder, const QString &name, const QStringList &encoderArguments)
{
    return writeFlac(folder.path(name), kShortSound, encoderArguments);
}

QString writeTaggableAiff(const TestFolder &folder, const QString &name)
{
    return writeAiff(folder.path(name), kShortSound);
}

QString writeApe(const TestFolder &folder, const QString &name)
{
    const QByteArray frame(1000, '\x5a');
    QByteArray file = "MAC ";
    append<quint16>(file, 3990); // version
    append<quint16>(file, 0);
    append<quint32>(file, 52); // length of this descriptor
    append<quint32>(file, 24); // of the header
    append<quint32>(file, 4);  // of the seek table
    append<quint32>(file, 0);  // of the WAV header: made by the decoder
    append<quint32>(file, static_cast<quint32>(frame.size()));
    append<quint32>(file, 0);
    append<quint32>(file, 0);      // of the data that follows the sound
    file.append(16, '\0');         // MD5
    append<quint16>(file, 2000);   // compression level
    append<quint16>(file, 1 << 5); // the decoder makes the WAV header
    append<quint32>(file, 73728 * 4);
    append<quint32>(file, 22050); // blocks of the last frame
    append<quint32>(file, 1);     // frames
    append<quint16>(file, 16);
    append<quint16>(file, 2);
    append<quint32>(file, 44100);
    append<quint32>(file, 80); // the seek table: where the only frame starts
    return folder.write(name, file + frame);
}

TagsObject fullRecord()
{
    TagsObject tags;
    tags.setTitleText(u"Änderung \u6771\u4eac \U0001F3B5"_s);
    tags.setArtistText(u"Sigur Rós"_s);
    tags.setAlbumArtistText(u"Various \u0416"_s);
    tags.setDateText(u"1999"_s);
    tags.setAlbumText(u"a=b \"quoted\""_s);
    tags.setCommentText(u"first line\nsecond = line"_s);
    tags.setDiscText(u"2"_s);
    tags.setDiscTotalText(u"3"_s);
    tags.setTrackText(u"7"_s);
    tags.setTrackTotalText(u"12"_s);
    tags.setGenreText(u"Rímur"_s);
    tags.setComposerText(u"Dvořák"_s);
    tags.setEncoderSettings(u"never written here"_s);
    return tags;
}

AlbumArt picture(int width, int height, const QColor &colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return artOf(image);
}

AlbumArt noisePicture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    std::minstd_rand random(1);
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = 0xff000000U | static_cast<QRgb>((random() >> 3) & 0xffffffU);
    }
    return artOf(image);
}

AlbumArt artOf(const QImage &image)
{
    return std::make_shared<const CoverPicture>(encodedPicture(image, "png"), image.size(), image.bitPlaneCount());
}

QImage imageOf(const AlbumArt &picture)
{
    return QImage::fromData(picture->bytes());
}

QByteArray encodedPicture(const AlbumArt &picture, const char *format)
{
    return encodedPicture(imageOf(picture), format);
}

QByteArray encodedPicture(const QImage &image, const char *format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return buffer.data();
}

QList<Id3Frame> id3Frames(const QByteArray &file)
{
    const auto byte = [&file](qsizetype at) { return static_cast<quint32>(static_cast<uchar>(file.at(at))); };
    const auto size = [&](qsizetype at) {
        return static_cast<qsizetype>(byte(at) << 21 | byte(at + 1) << 14 | byte(at + 2) << 7 | byte(at + 3));
    };
    QList<Id3Frame> frames;
    const qsizetype start = file.indexOf("ID3\4"); // an AIFF chunk is named "ID3 "
    if (start < 0)
        return frames;
    const qsizetype end = start + 10 + size(start + 6);
    for (qsizetype at = start + 10; at + 10 < end && file.at(at) != '\0';) {
        const qsizetype length = size(at + 4);
        frames.append({file.mid(at, 4), file.mid(at + 10, length)});
        at += 10 + length;
    }
    return frames;
}

int frameCount(const QList<Id3Frame> &frames, const QByteArray &id)
{
    int count = 0;
    for (const Id3Frame &frame : frames)
        count += frame.id == id ? 1 : 0;
    return count;
}

QStringList frameTexts(const QList<Id3Frame> &frames, const QByteArray &id)
{
    QStringList texts;
    for (const Id3Frame &frame : frames) {
        if (frame.id != id)
            continue;
        EXPECT_EQ(frame.payload.at(0), '\3') << "not UTF-8";
        texts.append(QString::fromUtf8(frame.payload.mid(1)));
    }
    return texts;
}

LogCapture::LogCapture()
{
    const std::lock_guard lock(captureMutex);
    capturedTexts = new QList<CapturedText>;
    formerHandler = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(formerHandler);
    const std::lock_guard lock(captureMutex);
    delete capturedTexts;
    capturedTexts = nullptr;
}

QStringList LogCapture::texts(const QString &category) const
{
    const std::lock_guard lock(captureMutex);
    QStringList texts;
    for (const CapturedText &captured : *capturedTexts) {
        if (captured.category == category)
            texts.append(captured.text);
    }
    return texts;
}

} // namespace nurv::test
