// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"

#include "support/TestProgram.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

constexpr quint32 kSpeakers[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};

template<typename Number>
QByteArray little(Number value)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

template<typename Number>
QByteArray big(Number value)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// The 80-bit IEEE 754 number that AIFF keeps its sample rate in.
QByteArray extendedFloat(quint32 value)
{
    quint16 exponent = 16383 + 31;
    while ((value & 0x80000000U) == 0) {
        value <<= 1;
        --exponent;
    }
    return big(exponent) + big(value) + big(quint32{0});
}

QString writeBytes(const QString &path, const QByteArray &bytes)
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path())) << qPrintable(path);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path) << ": " << qPrintable(file.errorString());
    EXPECT_EQ(file.write(bytes), bytes.size()) << qPrintable(path);
    return path;
}

QJsonObject ffprobe(const QString &path)
{
    const ProgramResult result =
        runProgram(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, u"a:0"_s, u"-show_streams"_s,
                                  u"-show_format"_s, u"-of"_s, u"json"_s, path});
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(path) << ": " << result.errors.constData();
    return QJsonDocument::fromJson(result.output).object();
}

void insertAll(QMap<QString, QString> &into, const QJsonObject &from, bool lowerCase)
{
    for (auto entry = from.begin(); entry != from.end(); ++entry) {
        if (!entry.value().isObject()) {
            into.insert(lowerCase ? entry.key().toLower() : entry.key(), entry.value().toVariant().toString());
        }
    }
}

} // namespace

std::int64_t SoundShape::frameCount() const
{
    return frames > 0 ? frames : std::llround(seconds * rate);
}

QByteArray makeSamples(const SoundShape &shape)
{
    const std::int64_t frameCount = shape.frameCount();
    const int bytesPerSample = shape.bits / 8;
    const double fullScale = std::ldexp(1.0, shape.bits - 1) - 1.0;
    QByteArray bytes;
    bytes.reserve(frameCount * shape.channels * bytesPerSample);
    std::uint32_t state = shape.seed * 2654435761U + 12345U;
    for (std::int64_t frame = 0; frame < frameCount; ++frame) {
        for (int channel = 0; channel < shape.channels; ++channel) {
            state = state * 1664525U + 1013904223U;
            const double noise = static_cast<double>(state >> 8) / 8388608.0 - 1.0;
            const double hertz = 220.0 * (channel + 1) + shape.seed % 97;
            const double tone = std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(frame) / shape.rate);
            auto sample = static_cast<std::int64_t>(std::llround((0.45 * tone + 0.02 * noise) * fullScale));
            if (shape.bits == 8) {
                sample += 128;
            }
            const QByteArray whole = little(static_cast<qint64>(sample));
            bytes.append(whole.constData(), bytesPerSample);
        }
    }
    return bytes;
}

QByteArray riffChunk(const char *fourCharacters, const QByteArray &contents)
{
    QByteArray chunk = QByteArray(fourCharacters, 4) + little(static_cast<quint32>(contents.size())) + contents;
    if (contents.size() % 2 != 0) {
        chunk.append('\0');
    }
    return chunk;
}

QByteArray wavBytes(const SoundShape &shape, const QByteArray &chunksBefore, const QByteArray &chunksAfter)
{
    const auto blockAlign = static_cast<quint16>(shape.channels * shape.bits / 8);
    const auto bits = static_cast<quint16>(shape.bits);
    QByteArray format = little(static_cast<quint16>(shape.extensible ? 0xFFFE : 1))
                        + little(static_cast<quint16>(shape.channels)) + little(static_cast<quint32>(shape.rate))
                        + little(static_cast<quint32>(shape.rate) * blockAlign) + little(blockAlign) + little(bits);
    if (shape.extensible) {
        format += little(quint16{22}) + little(bits) + little(kSpeakers[shape.channels])
                  + QByteArray::fromHex("0100000000001000800000aa00389b71");
    }
    const QByteArray body =
        "WAVE" + riffChunk("fmt ", format) + chunksBefore + riffChunk("data", makeSamples(shape)) + chunksAfter;
    return "RIFF" + little(static_cast<quint32>(body.size())) + body;
}

QByteArray aiffBytes(const SoundShape &shape)
{
    const int bytesPerSample = shape.bits / 8;
    QByteArray samples = makeSamples(shape);
    for (qsizetype start = 0; start < samples.size(); start += bytesPerSample) {
        std::reverse(samples.begin() + start, samples.begin() + start + bytesPerSample);
        if (shape.bits == 8) {
            samples[start] = static_cast<char>(samples[start] ^ '\x80');
        }
    }
    const QByteArray common = big(static_cast<quint16>(shape.channels)) + big(static_cast<quint32>(shape.frameCount()))
                              + big(static_cast<quint16>(shape.bits)) + extendedFloat(static_cast<quint32>(shape.rate));
    QByteArray body = "AIFF";
    body += "COMM" + big(static_cast<quint32>(common.size())) + common;
    body += "SSND" + big(static_cast<quint32>(samples.size() + 8)) + QByteArray(8, '\0') + samples;
    if (samples.size() % 2 != 0) {
        body.append('\0');
    }
    return "FORM" + big(static_cast<quint32>(body.size())) + body;
}

QString writeWav(const QString &path, const SoundShape &shape)
{
    return writeBytes(path, wavBytes(shape));
}

QString writeAiff(const QString &path, const SoundShape &shape)
{
    return writeBytes(path, aiffBytes(shape));
}

QString writeFlac(const QString &path, const SoundShape &shape, const QStringList &encoderArguments)
{
    const QTemporaryDir scratch;
    const QString wav = writeWav(scratch.filePath(u"sound.wav"_s), shape);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path())) << qPrintable(path);
    const ProgramResult result = runProgram(u"flac"_s, QStringList{u"--silent"_s, u"--force"_s} + encoderArguments
                                                           + QStringList{u"-o"_s, path, wav});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    return path;
}

QString writeByFfmpeg(const QString &path, const SoundShape &shape, const QStringList &encoderArguments)
{
    const QTemporaryDir scratch;
    const QString wav = writeWav(scratch.filePath(u"sound.wav"_s), shape);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path())) << qPrintable(path);
    const ProgramResult result =
        runProgram(u"ffmpeg"_s, QStringList{u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s, u"-i"_s, wav}
                                    + encoderArguments + QStringList{path});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    return path;
}

QByteArray decodedMd5(const QString &path)
{
    const ProgramResult result =
        runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, path, u"-map"_s, u"0:a:0"_s, u"-f"_s,
                                 u"s32le"_s, u"-c:a"_s, u"pcm_s32le"_s, u"pipe:1"_s});
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(path) << ": " << result.errors.constData();
    EXPECT_FALSE(result.output.isEmpty()) << qPrintable(path) << " decodes to nothing";
    return QCryptographicHash::hash(result.output, QCryptographicHash::Md5).toHex();
}

::testing::AssertionResult sameSound(const QString &left, const QString &right)
{
    const QMap<QString, QString> leftStream = ffprobeStream(left);
    const QMap<QString, QString> rightStream = ffprobeStream(right);
    for (const QString &fact : {u"sample_rate"_s, u"channels"_s}) {
        if (!leftStream.contains(fact) || leftStream.value(fact) != rightStream.value(fact)) {
            return ::testing::AssertionFailure()
                   << qPrintable(fact) << ": " << qPrintable(leftStream.value(fact)) << " in " << qPrintable(left)
                   << ", " << qPrintable(rightStream.value(fact)) << " in " << qPrintable(right);
        }
    }
    if (decodedMd5(left) != decodedMd5(right)) {
        return ::testing::AssertionFailure()
               << "the samples of " << qPrintable(left) << " and " << qPrintable(right) << " differ";
    }
    return ::testing::AssertionSuccess();
}

QMap<QString, QString> ffprobeStream(const QString &path)
{
    QMap<QString, QString> facts;
    insertAll(facts, ffprobe(path).value(u"streams"_s).toArray().first().toObject(), false);
    return facts;
}

QMap<QString, QString> ffprobeTags(const QString &path)
{
    const QJsonObject all = ffprobe(path);
    QMap<QString, QString> tags;
    insertAll(tags, all.value(u"streams"_s).toArray().first().toObject().value(u"tags"_s).toObject(), true);
    insertAll(tags, all.value(u"format"_s).toObject().value(u"tags"_s).toObject(), true);
    return tags;
}

QStringList metaflacTags(const QString &path)
{
    const ProgramResult result = runProgram(u"metaflac"_s, {u"--no-utf8-convert"_s, u"--export-tags-to=-"_s, path});
    EXPECT_EQ(result.exitStatus, 0) << qPrintable(path) << ": " << result.errors.constData();
    return QString::fromUtf8(result.output).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace nurv::test
