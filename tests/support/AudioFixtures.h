// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdint>

namespace nurv::test {

/// What sound a fixture holds. The same values give the same samples, sample for
/// sample; another seed gives other ones.
struct SoundShape {
    int rate = 44100;        ///< Hz
    int bits = 16;           ///< 8, 16, 24 or 32 bits per sample
    int channels = 2;        ///< 1 to 8
    double seconds = 1.0;    ///< used when `frames` is 0
    std::int64_t frames = 0; ///< length in frames
    std::uint32_t seed = 1;
    bool extensible = false; ///< WAV only: WAVE_FORMAT_EXTENSIBLE with the usual speakers

    [[nodiscard]] std::int64_t frameCount() const;
};

/// The interleaved samples, little-endian signed integers of `bits` each
/// (8-bit samples unsigned, as in WAV): tones with some noise, so that every
/// encoder finds something to do.
[[nodiscard]] QByteArray makeSamples(const SoundShape &shape);

/// A whole RIFF WAVE file; `chunksBefore` and `chunksAfter` stand as they are
/// before and after the data chunk.
[[nodiscard]] QByteArray wavBytes(const SoundShape &shape, const QByteArray &chunksBefore = {},
                                  const QByteArray &chunksAfter = {});
/// A whole AIFF file.
[[nodiscard]] QByteArray aiffBytes(const SoundShape &shape);
/// A RIFF chunk with its pad byte.
[[nodiscard]] QByteArray riffChunk(const char *fourCharacters, const QByteArray &contents);

/// Write the file, making the folders above it, and return its path.
QString writeWav(const QString &path, const SoundShape &shape = {});
QString writeAiff(const QString &path, const SoundShape &shape = {});
/// Encodes the sound with the machine's flac program. Returns the path.
QString writeFlac(const QString &path, const SoundShape &shape = {}, const QStringList &encoderArguments = {});
/// Any format that the ffmpeg program chooses by the file's suffix.
QString writeByFfmpeg(const QString &path, const SoundShape &shape = {}, const QStringList &encoderArguments = {});

/// MD5 (hex) of the samples that the ffmpeg program decodes, as signed 32-bit
/// little-endian; fails the test when it cannot decode the file.
[[nodiscard]] QByteArray decodedMd5(const QString &path);

/// Whether two files of any formats hold the same sample rate, channel count and samples.
[[nodiscard]] ::testing::AssertionResult sameSound(const QString &left, const QString &right);

/// The facts of the first audio stream after ffprobe: codec_name, sample_rate,
/// channels, bits_per_sample, bits_per_raw_sample, duration_ts, bit_rate, ...
[[nodiscard]] QMap<QString, QString> ffprobeStream(const QString &path);
/// The tags of the file and its first audio stream after ffprobe; names in lower case.
[[nodiscard]] QMap<QString, QString> ffprobeTags(const QString &path);
/// The NAME=value lines that metaflac exports, in file order.
[[nodiscard]] QStringList metaflacTags(const QString &path);

} // namespace nurv::test
