// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "samples/SoundLength.h"

#include "SampleFixtures.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

using Frames = std::optional<std::int64_t>;

const SoundShape kSound{.frames = 22'050};

struct SoundLengthTest : ::testing::Test {
    TestFolder folder;

    [[nodiscard]] SoundLength lengthOf(const QByteArray &bytes) const
    {
        const auto length = soundLength(folder.write(u"sound"_s, bytes));
        EXPECT_TRUE(length);
        return length.value_or(SoundLength());
    }
    [[nodiscard]] QByteArray make(const QString &kind, const SoundShape &shape = kSound) const
    {
        makeSound(folder, kind, shape);
        return folder.read(u"sound."_s + kind);
    }
};

TEST_F(SoundLengthTest, TellsLengthAndFormatOfEveryKind)
{
    for (const QString &kind : {u"wav"_s, u"wavx"_s, u"aiff"_s, u"flac"_s, u"flac-ffmpeg"_s, u"wv"_s, u"wv-ffmpeg"_s,
                                u"tta"_s, u"ape1000"_s, u"ape5000"_s, u"shn"_s, u"m4a"_s}) {
        const bool isWide = kind != u"shn" && kind != u"wv-ffmpeg";
        for (const SoundShape &shape :
             {kSound, SoundShape{.rate = 96000, .bits = isWide ? 24 : 16, .channels = 1, .frames = 54'321}}) {
            SCOPED_TRACE(qPrintable(kind));
            const SoundLength length = lengthOf(make(kind, shape));
            EXPECT_EQ(length.declaredFrames, shape.frameCount());
            const bool isCounted = kind.startsWith(u"wav") || kind == u"aiff" || kind.startsWith(u"flac");
            EXPECT_EQ(length.heldFrames, isCounted ? Frames(shape.frameCount()) : Frames());
            EXPECT_EQ(length.sampleRateHz, shape.rate);
            EXPECT_EQ(length.channels, shape.channels);
            EXPECT_EQ(length.bitsPerSample, shape.bits);
        }
    }
}

TEST_F(SoundLengthTest, TellsWhatAWavHeaderSaysAndWhatIsThere)
{
    const QByteArray wav = wavBytes(kSound);
    for (const auto &[size, declared] : {std::pair(0U, Frames(0)), std::pair(0xFFFFFFFFU, Frames()),
                                         std::pair(44'100U, Frames(11'025)), std::pair(176'400U, Frames(44'100))}) {
        const SoundLength length = lengthOf(patched(wav, 40, little32(size)));
        EXPECT_EQ(length.declaredFrames, declared);
        EXPECT_EQ(length.heldFrames, 22'050);
    }
    const SoundLength cut = lengthOf(wav.chopped(400));
    EXPECT_EQ(cut.declaredFrames, 22'050);
    EXPECT_EQ(cut.heldFrames, 21'950);
    const QByteArray aiff = aiffBytes(kSound);
    const SoundLength less = lengthOf(patched(aiff, aiff.indexOf("COMM") + 10, big32(100)));
    EXPECT_EQ(less.declaredFrames, 100);
    EXPECT_EQ(less.heldFrames, 22'050);
}

TEST_F(SoundLengthTest, TellsNothingWhereAPipeLeftNothing)
{
    QByteArray flac = make(u"flac"_s);
    flac[21] = static_cast<char>(flac[21] & '\xF0');
    const SoundLength piped = lengthOf(patched(flac, 22, big32(0)));
    EXPECT_EQ(piped.declaredFrames, std::nullopt);
    EXPECT_EQ(piped.heldFrames, 22'050) << "the last frame tells";
    EXPECT_EQ(lengthOf(patched(make(u"wv"_s), 12, little32(0xFFFFFFFF))).declaredFrames, std::nullopt);
}

TEST_F(SoundLengthTest, TellsWhatTheOwnHeadersSayAlsoWhereTheyLie)
{
    EXPECT_EQ(lengthOf(patched(make(u"flac"_s), 22, big32(100))).declaredFrames, 100);
    EXPECT_EQ(lengthOf(patched(make(u"wv"_s), 12, little32(100))).declaredFrames, 100);
    EXPECT_EQ(lengthOf(patched(make(u"tta"_s), 14, little32(100))).declaredFrames, 100);
    EXPECT_EQ(lengthOf(patched(make(u"ape1000"_s), 52 + 8, little32(100))).declaredFrames, 100);
    const QString path = folder.path(u"lying.shn"_s);
    runOrFail(bundled(u"shorten"_s),
              {folder.write(u"lying.wav"_s, patched(wavBytes(kSound), 40, little32(176'400))), path});
    EXPECT_EQ(soundLength(path).value_or(SoundLength()).declaredFrames, 44'100);
}

TEST_F(SoundLengthTest, CountsAFlacFileByItsLastFrame)
{
    for (const SoundShape &shape :
         {kSound, SoundShape{.rate = 96000, .bits = 24, .channels = 6, .frames = 4096}, SoundShape{.frames = 1},
          SoundShape{.rate = 8000, .bits = 8, .channels = 1, .frames = 1'000'003}}) {
        const QByteArray flac = make(u"flac"_s, shape);
        EXPECT_EQ(lengthOf(flac).heldFrames, shape.frameCount());
        const SoundLength lying = lengthOf(patched(flac, 22, big32(100)));
        EXPECT_EQ(lying.declaredFrames, 100);
        EXPECT_EQ(lying.heldFrames, shape.frameCount());
        EXPECT_EQ(lengthOf(flac + "TAG" + QByteArray(125, 'x')).heldFrames, shape.frameCount());
        // Neither the largest frame nor anything else is known.
        EXPECT_EQ(lengthOf(patched(flac, 12, QByteArray(6, 0))).heldFrames, shape.frameCount());
        const SoundLength cut = lengthOf(flac.chopped(1));
        EXPECT_EQ(cut.heldFrames, std::nullopt);
        EXPECT_FALSE(cut.isBacked);
        EXPECT_EQ(lengthOf(flac + "rubbish").heldFrames, std::nullopt);
    }
}

TEST_F(SoundLengthTest, CountsAFlacFileWhoseBlocksDiffer)
{
    // Its frames have the numbers of their first samples.
    const QByteArray wav = wavBytes(kSound);
    folder.write(u"sound.wav"_s, wav);
    runOrFail(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, folder.path(u"sound.wav"_s), u"-af"_s, u"asetnsamples=999:p=0"_s,
                            folder.path(u"odd.flac"_s)});
    EXPECT_EQ(lengthOf(folder.read(u"odd.flac"_s)).heldFrames, 22'050);
}

TEST_F(SoundLengthTest, TellsWhereTheTableOfAnMpeg4FileSaysMoreThanItsHeader)
{
    const QByteArray m4a = make(u"m4a"_s);
    EXPECT_EQ(lengthOf(m4a).heldFrames, std::nullopt) << "they agree";
    const qsizetype header = m4a.indexOf("mdhd");
    const SoundLength less = lengthOf(patched(m4a, header + 20, big32(11'025)));
    EXPECT_EQ(less.declaredFrames, 11'025);
    EXPECT_EQ(less.heldFrames, 22'050);
    // The durations of a hundred packets instead of those that are there.
    EXPECT_GE(lengthOf(patched(m4a, m4a.indexOf("stts") + 12, big32(100))).heldFrames, Frames(100 * 4096));
}

TEST_F(SoundLengthTest, TellsNothingOfWhatIsNoSound)
{
    EXPECT_FALSE(soundLength(folder.write(u"a.wav"_s, "some text, and no sound")));
    EXPECT_FALSE(soundLength(folder.write(u"b.wav"_s, "")));
    const auto shorten = soundLength(folder.write(u"c.shn"_s, "ajkg\2 and no stream"));
    ASSERT_TRUE(shorten) << "only decoding it tells more";
    EXPECT_EQ(shorten->declaredFrames, std::nullopt);
    EXPECT_FALSE(shorten->isBacked);
    EXPECT_FALSE(soundLength(folder.write(u"d.flac"_s, "fLaC")));
    EXPECT_FALSE(soundLength(folder.makeFolder(u"folder.wav"_s)));
    EXPECT_FALSE(soundLength(folder.path(u"missing.wav"_s)));
    const QByteArray pipe = folder.path(u"pipe.wav"_s).toLocal8Bit();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    EXPECT_FALSE(soundLength(folder.path(u"pipe.wav"_s)));
}

/// A cyclic checksum as RFC 9639 has them, of 8 or 16 bits, as the bytes that follow.
QByteArray cyclicChecksum(const QByteArray &bytes, int bits, unsigned polynomial)
{
    unsigned sum = 0;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned>(static_cast<unsigned char>(byte)) << (bits - 8);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum << 1) ^ ((sum >> (bits - 1) & 1) != 0 ? polynomial | 1U << bits : 0);
    }
    QByteArray result;
    for (int shift = bits - 8; shift >= 0; shift -= 8)
        result += static_cast<char>(sum >> shift);
    return result;
}

/// The head of a frame of 512 samples, the first one of its file.
QByteArray flacFrameHead()
{
    const QByteArray head("\xFF\xF8\x90\0\0", 5);
    return head + cyclicChecksum(head, 8, 0x07);
}

TEST_F(SoundLengthTest, LooksAtAFewHeadsOfFlacFramesOnly)
{
    const QByteArray metadata = make(u"flac"_s).left(42);
    for (const int heads : {0, 50, 99, 100, 80'000}) {
        const QByteArray frame = flacFrameHead() + flacFrameHead().repeated(heads);
        const QByteArray whole = frame + cyclicChecksum(frame, 16, 0x8005);
        QByteArray file = metadata + whole;
        file[4] = static_cast<char>(0x80);     // the last block of metadata
        file.replace(15, 3, QByteArray(3, 0)); // the largest frame is not told
        EXPECT_EQ(lengthOf(file).heldFrames, heads < 100 ? Frames(512) : Frames()) << heads;
    }
}

TEST_F(SoundLengthTest, DamagedHeadersBreakNothing)
{
    for (const QString &kind : {u"wav"_s, u"aiff"_s, u"flac"_s, u"wv"_s, u"tta"_s, u"ape1000"_s, u"shn"_s, u"m4a"_s}) {
        const QByteArray whole = make(kind);
        std::uint32_t state = 3;
        for (int trial = 0; trial < 200; ++trial) {
            QByteArray damaged = whole;
            for (int byte = 0; byte < 4; ++byte) {
                state = state * 1664525U + 1013904223U;
                damaged[static_cast<qsizetype>(state >> 16) % 100] = static_cast<char>(state >> 8);
            }
            const auto length = soundLength(folder.write(u"damaged"_s, damaged));
            EXPECT_GE(length.value_or(SoundLength()).declaredFrames.value_or(0), 0) << qPrintable(kind);
        }
    }
}

} // namespace
} // namespace nurv
