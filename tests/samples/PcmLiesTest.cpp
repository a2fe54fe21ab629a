// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "SampleFixtures.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

const SoundShape kSound{.frames = 22'050};
const SoundShape kOdd{.bits = 24, .channels = 1, .frames = 22'051};
constexpr std::uint32_t kNotKnown = 0xFFFFFFFF;

/// The offset of a chunk's size.
qsizetype sizeOf(const QByteArray &file, const char *chunk)
{
    return file.indexOf(chunk) + 4;
}

QByteArray withDataSize(const QByteArray &wav, std::uint32_t size)
{
    return patched(wav, sizeOf(wav, "data"), little32(size));
}

/// An RF64 file of a RIFF file; the size of the samples stands in its ds64 chunk.
QByteArray rf64Of(const QByteArray &wav, std::uint64_t size, const char *magic = "RF64")
{
    const qsizetype data = wav.indexOf("data");
    const QByteArray wide =
        little32(static_cast<std::uint32_t>(size)) + little32(static_cast<std::uint32_t>(size >> 32));
    return QByteArray(magic) + little32(kNotKnown) + "WAVE"
           + riffChunk("ds64", QByteArray(8, '\0') + wide + QByteArray(12, '\0')) + wav.mid(12, data - 12) + "data"
           + little32(kNotKnown) + wav.mid(data + 8);
}

struct PcmLies : ::testing::Test {
    TestFolder folder;

    [[nodiscard]] Decoded decodeBytes(const QByteArray &bytes) const { return decode(folder.write(u"sound"_s, bytes)); }
    /// The whole sound comes, the header is said to promise that much, and the complaint is
    /// the expected one.
    void expectWhole(const QByteArray &bytes, std::optional<std::int64_t> declared, const QString &complaint = {},
                     const SoundShape &shape = kSound) const
    {
        const Decoded decoded = decodeBytes(bytes);
        EXPECT_EQ(decoded.refusal, QString());
        EXPECT_EQ(decoded.declaredFrames, declared);
        EXPECT_EQ(decoded.complaint, complaint);
        EXPECT_TRUE(decoded.samples == expectedSamples(shape)) << decoded.frames() << " frames";
    }
};

TEST_F(PcmLies, AHeaderThatIsRightIsBelieved)
{
    for (const QByteArray &behind : {QByteArray(), riffChunk("LIST", "INFO"), riffChunk("id3 ", "odd"),
                                     riffChunk("LIST", "").repeated(9000), QByteArray(4096, '\0'), QByteArray(1, '\0')})
        expectWhole(wavBytes(kSound, riffChunk("bext", QByteArray(603, 'x')), behind), 22'050);
    expectWhole(wavBytes(kOdd, riffChunk("odd ", "x"), riffChunk("odd ", "y")), 22'051, {}, kOdd);
    expectWhole(aiffBytes(kSound), 22'050);
    expectWhole(aiffBytes(kOdd), 22'051, {}, kOdd);
    expectWhole(aiffBytes(kSound) + "ANNO" + big32(3) + "abc", 22'050);
}

TEST_F(PcmLies, ChunksWithoutTheirPadBytesAreChunks)
{
    QByteArray wav = wavBytes(kOdd, {}, riffChunk("LIST", "INFO"));
    wav.remove(wav.indexOf("LIST") - 1, 1);
    expectWhole(wav, 22'051, {}, kOdd);
}

TEST_F(PcmLies, SizesOfCrashedRecordersAndPipesAreNotBelieved)
{
    const QByteArray wav = wavBytes(kSound);
    expectWhole(withDataSize(wav, 0), 0);
    for (const std::uint32_t size : {kNotKnown, kNotKnown - 44, 0x7FFFFFFFU, 0x7FFFFFFFU - 36, 0x7FFFF001U})
        expectWhole(withDataSize(wav, size), std::nullopt);
    expectWhole(withDataSize(patched(wav, 4, little32(0)), 0), 0);
    expectWhole(rf64Of(wav, 0), 0);
    expectWhole(rf64Of(wav, std::numeric_limits<std::uint64_t>::max()), std::nullopt);
}

TEST_F(PcmLies, AnEmptyFileWithChunksIsEmpty)
{
    QByteArray empty = wavBytes(kSound).left(44) + riffChunk("LIST", "INFO");
    const Decoded decoded = decodeBytes(withDataSize(empty, 0));
    EXPECT_EQ(decoded.frames(), 0);
    EXPECT_EQ(decoded.complaint, QString());
    EXPECT_EQ(decoded.declaredFrames, 0);
}

TEST_F(PcmLies, ASizeThatIsTooSmallIsAWrongPromise)
{
    expectWhole(withDataSize(wavBytes(kSound), 44'100), 11'025, u"its header promises 11025 samples, it holds 22050"_s);
    expectWhole(rf64Of(wavBytes(kSound), 44'100), 11'025, u"its header promises 11025 samples, it holds 22050"_s);
    // Wrapped around at 4 GiB, or at a frame of a recorder that was switched off.
    expectWhole(withDataSize(wavBytes(kSound), 4), 1, u"its header promises 1 samples, it holds 22050"_s);
}

TEST_F(PcmLies, ASizeThatIsTooLargeIsAWrongPromise)
{
    expectWhole(withDataSize(wavBytes(kSound), 176'400), 44'100,
                u"its header promises 44100 samples, it holds 22050"_s);
    expectWhole(rf64Of(wavBytes(kSound), 0x123456789CU), 0x123456789CLL / 4,
                u"its header promises 19546873383 samples, it holds 22050"_s);
}

TEST_F(PcmLies, AFileThatWasCutOffIsDamaged)
{
    EXPECT_EQ(decodeBytes(wavBytes(kSound).chopped(400)).complaint,
              u"its header promises 22050 samples, it holds 21950"_s);
    EXPECT_EQ(decodeBytes(aiffBytes(kSound).chopped(400)).complaint,
              u"its header promises 22050 samples, it holds 21950"_s);
}

TEST_F(PcmLies, SixtyFourBitSizesAreRead)
{
    expectWhole(rf64Of(wavBytes(kSound), 88'200), 22'050);
    expectWhole(rf64Of(wavBytes(kSound), 88'200, "BW64"), 22'050);
    expectWhole(rf64Of(wavBytes(kSound, {}, riffChunk("LIST", "INFO")), 88'200), 22'050);
}

TEST_F(PcmLies, AnEndInsideAFrameIsNoEnd)
{
    const QString complaint = u"it ends inside a frame of samples"_s;
    expectWhole(withDataSize(wavBytes(kSound), 0) + "x", 0, complaint);
    expectWhole(withDataSize(wavBytes(kSound), kNotKnown) + "xyz", std::nullopt, complaint);
    expectWhole(withDataSize(wavBytes(kSound) + "xy", 88'202), 22'050, complaint);
    QByteArray aiff = aiffBytes(kSound) + "xy";
    aiff = patched(aiff, sizeOf(aiff, "SSND"), big32(88'200 + 8 + 2));
    expectWhole(aiff, 22'050, complaint);
}

TEST_F(PcmLies, SamplesBehindTheSamplesAreNotForgotten)
{
    expectWhole(wavBytes(kSound, {}, riffChunk("data", QByteArray(400, 'x'))), 22'050,
                u"it holds further samples behind its sound"_s);
}

TEST_F(PcmLies, AFileBehindAFileIsNotForgotten)
{
    expectWhole(wavBytes(kSound) + wavBytes(kSound), 22'050, u"it holds further samples behind its sound"_s);
    expectWhole(aiffBytes(kSound) + aiffBytes(kSound), 22'050, u"it holds further samples behind its sound"_s);
}

TEST_F(PcmLies, AiffCountsThatAreWrongAreTold)
{
    const QByteArray aiff = aiffBytes(kSound);
    const qsizetype count = sizeOf(aiff, "COMM") + 4 + 2;
    const qsizetype size = sizeOf(aiff, "SSND");
    expectWhole(patched(aiff, count, big32(11'025)), 11'025, u"its header promises 11025 samples, it holds 22050"_s);
    expectWhole(patched(aiff, count, big32(44'100)), 44'100, u"its header promises 44100 samples, it holds 22050"_s);
    expectWhole(patched(aiff, count, big32(0)), 0);
    expectWhole(patched(aiff, count, big32(kNotKnown)), std::nullopt);
    expectWhole(patched(aiff, size, big32(0)), 0);
    expectWhole(patched(aiff, size, big32(kNotKnown)), 22'050);
    expectWhole(patched(aiff, size, big32(44'108)), 11'025, u"its header promises 11025 samples, it holds 22050"_s);
    expectWhole(patched(patched(aiff, size, big32(44'108)), count, big32(11'025)), 11'025,
                u"its header promises 11025 samples, it holds 22050"_s);
    expectWhole(patched(patched(aiff, size, big32(0)), count, big32(0)), 0);
}

TEST_F(PcmLies, WhatSoxWritesToAPipeHasNoLength)
{
    const QByteArray raw = makeSamples(kSound);
    for (const char *kind : {"wav", "aiff"}) {
        const QString soxKind = QString::fromLatin1(kind);
        const QByteArray piped = runOrFail(
            u"sh"_s, {u"-c"_s, u"sox -t raw -r 44100 -b 16 -c 2 -e signed - -t \"$0\" - | cat"_s, soxKind}, raw);
        expectWhole(piped, std::nullopt);
    }
}

TEST_F(PcmLies, AiffMayTellItsFormatBehindItsSamples)
{
    const QByteArray aiff = aiffBytes(kSound);
    const QByteArray common = aiff.mid(aiff.indexOf("COMM"), 26);
    QByteArray turned = aiff;
    turned.remove(turned.indexOf("COMM"), common.size());
    expectWhole(turned + common, 22'050);
}

TEST_F(PcmLies, HeadersThatContradictThemselvesAreRefused)
{
    const QByteArray wav = wavBytes(kSound);
    EXPECT_EQ(decodeBytes(patched(wav, 22, QByteArray(2, '\0'))).refusal, u"its header promises 0 channels"_s);
    EXPECT_EQ(decodeBytes(patched(wav, 24, little32(0))).refusal, u"its header promises a sample rate of 0 Hz"_s);
    EXPECT_EQ(decodeBytes(patched(wav, 32, QByteArray(2, '\x05'))).refusal.left(28),
              u"its header contradicts itself"_s.left(28));
    EXPECT_EQ(decodeBytes(patched(wav, 20, QByteArray("\x55\0", 2))).refusal,
              u"its samples are of the kind 85, neither integers nor floating point"_s);
    EXPECT_EQ(decodeBytes(wav.left(36)).refusal, u"it has no chunk of samples"_s);
    EXPECT_EQ(decodeBytes(wav.left(20)).refusal, u"its header is cut off"_s);
    EXPECT_EQ(decodeBytes(patched(wav, 12, "fmtx")).refusal, u"its header does not tell how its samples are kept"_s);
    EXPECT_EQ(decodeBytes(aiffBytes(kSound).left(30)).refusal, u"its header is cut off"_s);
}

} // namespace
} // namespace nurv
