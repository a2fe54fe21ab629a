// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleFixtures.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

const SoundShape kSound{.frames = 22'050};
const QString kPromisesLess = u"its header promises 11025 samples, it holds 22050"_s;
const QString kPromisesMore = u"its header promises 44100 samples, it holds 22050"_s;

/// CRC-32 as TTA, zip and others have it.
std::uint32_t crc32Of(const QByteArray &bytes)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0);
    }
    return ~crc;
}

struct LyingHeaders : ::testing::Test {
    TestFolder folder;

    [[nodiscard]] QByteArray make(const QString &kind) const
    {
        makeSound(folder, kind, kSound);
        return folder.read(u"sound."_s + kind);
    }
    [[nodiscard]] Decoded decodeBytes(const QByteArray &bytes) const { return decode(folder.write(u"lying"_s, bytes)); }
    /// A WAV file whose data chunk has that size.
    [[nodiscard]] QString wavOfSize(std::uint32_t size) const
    {
        const QByteArray wav = wavBytes(kSound);
        return folder.write(u"lying.wav"_s, patched(wav, wav.indexOf("data") + 4, little32(size)));
    }
};

/// A FLAC file with that total number of samples; 36 bits, of which the first four share
/// their byte (RFC 9639, section 8.2).
QByteArray withFlacTotal(QByteArray flac, std::uint32_t frames)
{
    flac[21] = static_cast<char>(flac[21] & '\xF0');
    return patched(flac, 22, big32(frames));
}

QByteArray withoutFlacMd5(const QByteArray &flac)
{
    return patched(flac, 26, QByteArray(16, '\0'));
}

TEST_F(LyingHeaders, AFlacOfAPipeHasNoLengthAndIsWhole)
{
    const QString wav = makeSound(folder, u"wav"_s, kSound);
    const QByteArray byFlac = runOrFail(u"flac"_s, {u"--silent"_s, u"-c"_s, u"-"_s}, wavBytes(kSound));
    const QByteArray byFfmpeg = runOrFail(u"sh"_s, {u"-c"_s, u"ffmpeg -v error -i \"$0\" -f flac - | cat"_s, wav});
    for (const QByteArray &flac : {withFlacTotal(byFlac, 0), byFfmpeg}) {
        const Decoded decoded = decodeBytes(flac);
        EXPECT_EQ(decoded.declaredFrames, std::nullopt);
        EXPECT_EQ(decoded.complaint, QString());
        EXPECT_TRUE(decoded.samples == expectedSamples(kSound));
    }
}

TEST_F(LyingHeaders, AWrongTotalOfFlacIsTold)
{
    const QByteArray flac = make(u"flac"_s);
    for (const QByteArray &file : {flac, withoutFlacMd5(flac)}) {
        for (const auto &[total, complaint] : {std::pair(11'025U, kPromisesLess), std::pair(44'100U, kPromisesMore)}) {
            const Decoded decoded = decodeBytes(withFlacTotal(file, total));
            EXPECT_EQ(decoded.complaint, complaint);
            EXPECT_EQ(decoded.declaredFrames, total);
            EXPECT_TRUE(decoded.samples == expectedSamples(kSound)) << decoded;
        }
    }
}

TEST_F(LyingHeaders, AWrongMd5OfFlacIsTold)
{
    for (const SoundShape &shape : {kSound, SoundShape{.bits = 8, .channels = 1, .frames = 9'000},
                                    SoundShape{.bits = 24, .channels = 6, .frames = 9'000}}) {
        makeSound(folder, u"flac"_s, shape);
        const QByteArray flac = folder.read(u"sound.flac"_s);
        EXPECT_EQ(decodeBytes(flac).complaint, QString()) << "the right one fits";
        EXPECT_EQ(decodeBytes(patched(flac, 30, "xyz")).complaint, u"its samples do not fit its MD5"_s);
    }
    EXPECT_EQ(decodeBytes(withoutFlacMd5(make(u"flac"_s))).complaint, QString());
}

TEST_F(LyingHeaders, AWrongTotalOfWavpackIsTold)
{
    const QByteArray wavpack = make(u"wv"_s);
    EXPECT_EQ(decodeBytes(patched(wavpack, 12, little32(11'025))).complaint, kPromisesLess);
    EXPECT_EQ(decodeBytes(patched(wavpack, 12, little32(44'100))).complaint, kPromisesMore);
    const Decoded unknown = decodeBytes(patched(wavpack, 12, little32(0xFFFFFFFF)));
    EXPECT_EQ(unknown.declaredFrames, std::nullopt);
    EXPECT_EQ(unknown.complaint, QString());
    EXPECT_TRUE(unknown.samples == expectedSamples(kSound)) << unknown;
    const Decoded none = decodeBytes(patched(wavpack, 12, little32(0)));
    EXPECT_EQ(none.declaredFrames, 0);
    EXPECT_TRUE(none.samples == expectedSamples(kSound)) << none;
}

TEST_F(LyingHeaders, AWavpackFileThatLacksABlockAndCountsWithoutItIsTold)
{
    // No checksum goes over the heads of these.
    makeSound(folder, u"wv-ffmpeg"_s, {.frames = 300'000});
    const QByteArray whole = folder.read(u"sound.wv-ffmpeg"_s);
    const auto numberAt = [](const QByteArray &bytes, qsizetype at) {
        return qFromLittleEndian<quint32>(bytes.constData() + at);
    };
    const qsizetype second = numberAt(whole, 4) + 8;
    const qsizetype third = second + numberAt(whole, second + 4) + 8;
    ASSERT_LT(third, whole.size());
    const quint32 lost = numberAt(whole, second + 20);
    ASSERT_GT(lost, 0U);
    const QByteArray cut = patched(whole.first(second) + whole.sliced(third), 12, little32(numberAt(whole, 12) - lost));
    EXPECT_EQ(decodeBytes(cut).complaint, u"blocks of its sound are missing");
}

TEST_F(LyingHeaders, AWrongLengthOfTtaIsTold)
{
    const SoundShape twoFrames{.frames = 60'000};
    makeSound(folder, u"tta"_s, twoFrames);
    const QByteArray tta = folder.read(u"sound.tta"_s);
    const auto withLength = [&tta](std::uint32_t frames) {
        const QByteArray lying = patched(tta, 14, little32(frames));
        return patched(lying, 18, little32(crc32Of(lying.left(18))));
    };
    EXPECT_EQ(decodeBytes(withLength(60'000)).complaint, QString()) << "the right one fits";
    // In the last frame, in whole frames, and beyond what is there.
    for (const std::uint32_t frames : {59'990U, 46'100U, 46'080U, 100U, 0U, 60'001U, 92'160U, 200'000U}) {
        const Decoded decoded = decodeBytes(withLength(frames));
        EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << frames << ": " << decoded;
    }
    // A frame less, and everything else as it has to be then.
    QByteArray shorter = withLength(46'080);
    shorter.remove(22 + 4, 4);
    shorter = patched(shorter, 26, little32(crc32Of(shorter.mid(22, 4))));
    EXPECT_EQ(decodeBytes(shorter).complaint, u"it holds more than the frames that its header counts"_s);
}

TEST_F(LyingHeaders, AWrongLengthOfMonkeysAudioIsTold)
{
    const SoundShape twoFrames{.frames = 100'000};
    makeSound(folder, u"ape2000"_s, twoFrames);
    const QByteArray ape = folder.read(u"sound.ape2000"_s);
    const qsizetype finalBlocks = 52 + 8;
    const auto last = qFromLittleEndian<quint32>(ape.constData() + finalBlocks);
    // Also where the MD5 of the file does not tell.
    for (const QByteArray &file : {ape, patched(ape, 36, QByteArray(16, '\0'))}) {
        EXPECT_EQ(decodeBytes(file).complaint, QString());
        for (const std::uint32_t blocks : {last - 1, 1U, last + 1, last + 1000, 0U}) {
            const Decoded decoded = decodeBytes(patched(file, finalBlocks, little32(blocks)));
            EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << blocks << ": " << decoded;
        }
        for (const std::uint32_t frames : {0U, 1U, 3U, 1000U}) {
            const Decoded decoded = decodeBytes(patched(file, finalBlocks + 4, little32(frames)));
            EXPECT_NE(decoded.refusal + decoded.complaint, QString()) << frames << ": " << decoded;
        }
    }
}

TEST_F(LyingHeaders, AHeaderThatShortenStoresIsHeldAgainstTheSound)
{
    // The encoder stores the header as it is, and takes what is there as samples.
    const QString path = folder.path(u"lying.shn"_s);
    runOrFail(bundled(u"shorten"_s), {wavOfSize(176'400), path});
    const Decoded more = decode(path);
    EXPECT_EQ(more.declaredFrames, 44'100);
    EXPECT_EQ(more.complaint, kPromisesMore);
    EXPECT_TRUE(more.samples == expectedSamples(kSound)) << more;
    runOrFail(bundled(u"shorten"_s), {wavOfSize(0xFFFFFFFF), path});
    const Decoded unknown = decode(path);
    EXPECT_EQ(unknown.declaredFrames, std::nullopt);
    EXPECT_EQ(unknown.complaint, QString());
    EXPECT_TRUE(unknown.samples == expectedSamples(kSound)) << unknown;
    // What it takes for something else than samples, nobody may let go.
    for (const std::uint32_t size : {0U, 44'100U}) {
        runOrFail(bundled(u"shorten"_s), {wavOfSize(size), path});
        EXPECT_EQ(decode(path).complaint, u"it stores bytes beside its samples that may be samples, too"_s) << size;
    }
}

/// A Shorten stream whose stored header says 0, with the samples in their blocks: the
/// header's bytes are coded one by one, so that the file is put together bit by bit.
QByteArray shortenWithStoredSize(const QByteArray &shn, std::uint32_t from, std::uint32_t to)
{
    const auto coded = [](std::uint32_t value) {
        // uvar(8) of each byte: a one bit and the eight bits of the byte, for there are none above.
        QByteArray bits;
        for (const char byte : little32(value)) {
            bits += '1';
            for (int bit = 7; bit >= 0; --bit)
                bits += (static_cast<std::uint8_t>(byte) >> bit & 1) != 0 ? '1' : '0';
        }
        return bits;
    };
    QByteArray bits;
    for (const char byte : shn.mid(5)) {
        for (int bit = 7; bit >= 0; --bit)
            bits += (static_cast<std::uint8_t>(byte) >> bit & 1) != 0 ? '1' : '0';
    }
    const qsizetype at = bits.indexOf(coded(from));
    EXPECT_GT(at, 0);
    bits.replace(at, 36, coded(to));
    QByteArray file = shn.left(5);
    for (qsizetype i = 0; i < bits.size(); i += 8)
        file += static_cast<char>(bits.mid(i, 8).toInt(nullptr, 2));
    return file;
}

TEST_F(LyingHeaders, AShortenFileOfACrashedRecorderIsDecodedToItsEnd)
{
    const QByteArray shn = make(u"shn"_s);
    for (const auto &[size, declared, complaint] :
         {std::tuple(0U, std::optional<std::int64_t>(0), QString()),
          std::tuple(0xFFFFFFFFU, std::optional<std::int64_t>(), QString()),
          std::tuple(44'100U, std::optional<std::int64_t>(11'025), kPromisesLess)}) {
        const Decoded decoded = decodeBytes(shortenWithStoredSize(shn, 88'200, size));
        EXPECT_EQ(decoded.declaredFrames, declared);
        EXPECT_EQ(decoded.complaint, complaint);
        EXPECT_TRUE(decoded.samples == expectedSamples(kSound)) << decoded;
    }
}

TEST_F(LyingHeaders, WhatEncodersTookForNoSoundIsNotForgotten)
{
    // Half of the sound behind the end that the header tells.
    const QString lying = wavOfSize(44'100);
    const QString ape = folder.path(u"a.ape"_s);
    runOrFail(bundled(u"mac"_s), {lying, ape, u"-c2000"_s});
    EXPECT_EQ(decode(ape).complaint, u"it stores bytes behind its sound that may be sound, too"_s);
    const QString wavpack = folder.path(u"a.wv"_s);
    runOrFail(u"wavpack"_s, {u"-q"_s, lying, u"-o"_s, wavpack});
    EXPECT_EQ(decode(wavpack).complaint, u"it keeps bytes behind its sound that may be sound, too"_s);
}

TEST_F(LyingHeaders, WhatEncodersMadeOfCrashedRecordersIsWholeOrComplainedOf)
{
    for (const std::uint32_t size : {0U, 0xFFFFFFFFU, 44'100U, 176'400U}) {
        const QString lying = wavOfSize(size);
        const QString output = folder.path(u"output.wv"_s);
        const std::vector<std::pair<QString, QStringList>> encoders = {
            {bundled(u"mac"_s), {lying, output, u"-c1000"_s}},
            {bundled(u"ttaenc"_s), {u"-e"_s, lying, u"-o"_s, output}},
            {bundled(u"shorten"_s), {lying, output}},
            {u"wavpack"_s, {u"-q"_s, u"-y"_s, u"-i"_s, lying, u"-o"_s, output}},
            {u"wavpack"_s, {u"-q"_s, u"-y"_s, lying, u"-o"_s, output}},
        };
        for (const auto &[program, arguments] : encoders) {
            QFile::remove(output);
            if (runProgram(program, arguments).exitStatus != 0)
                continue;
            const Decoded decoded = decode(output);
            const bool isWhole = decoded.samples == expectedSamples(kSound);
            // Where an encoder stopped at what the header said, without keeping the rest, its
            // output is a right file of less sound, and only the comparison can tell.
            const bool isShort = program.endsWith(u"ttaenc") && decoded.frames() == std::int64_t{size} / 4;
            EXPECT_TRUE(isWhole || isShort || !decoded.complaint.isEmpty())
                << qPrintable(program) << ", size " << size << ": " << decoded;
        }
    }
}

TEST_F(LyingHeaders, ChunksThatEncodersStoreAreNoSound)
{
    const QString wav =
        folder.write(u"chunks.wav"_s, wavBytes({.bits = 8, .channels = 1, .frames = 9'001}, riffChunk("bext", "odd"),
                                               riffChunk("LIST", "INFO") + riffChunk("id3 ", "odd")));
    const QString ape = folder.path(u"a.ape"_s);
    runOrFail(bundled(u"mac"_s), {wav, ape, u"-c2000"_s});
    const QString wavpack = folder.path(u"a.wv"_s);
    runOrFail(u"wavpack"_s, {u"-q"_s, wav, u"-o"_s, wavpack});
    const QString shn = folder.path(u"a.shn"_s);
    runOrFail(bundled(u"shorten"_s), {wav, shn});
    for (const QString &path : {ape, wavpack, shn}) {
        const Decoded decoded = decode(path);
        EXPECT_EQ(decoded.refusal + decoded.complaint, QString()) << qPrintable(path);
        EXPECT_EQ(decoded.frames(), 9'001) << qPrintable(path);
    }
}

TEST_F(LyingHeaders, SoundThatAnMpeg4FileHidesIsNotForgotten)
{
    const QString one = makeSound(folder, u"m4a"_s, kSound);
    const QString two = folder.path(u"two.m4a"_s);
    runOrFail(u"ffmpeg"_s,
              {u"-v"_s, u"error"_s, u"-i"_s, one, u"-map"_s, u"0:a"_s, u"-map"_s, u"0:a"_s, u"-c"_s, u"copy"_s, two});
    // The edit list: its size, "elst", the version, one entry, its length, its begin, its speed.
    const QByteArray bytes = folder.read(u"sound.m4a"_s);
    const qsizetype length = bytes.indexOf("elst") + 12;
    ASSERT_GT(length, 12);
    const auto shown = qFromBigEndian<quint32>(bytes.constData() + length);
    const QString halved = folder.write(u"half.m4a"_s, patched(bytes, length, big32(shown / 2)));
    const QString late = folder.write(u"late.m4a"_s, patched(bytes, length + 4, big32(11'025)));
    for (const QString &path : {two, halved, late}) {
        EXPECT_EQ(decode(path).complaint, u"it holds more sound than it shows: a further track, or a hidden part"_s)
            << qPrintable(path);
    }
}

} // namespace
} // namespace nurv
