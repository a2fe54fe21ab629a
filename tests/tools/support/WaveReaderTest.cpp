// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WaveReader.h"

#include "support/AllocationMeter.h"
#include "support/AudioFixtures.h"
#include "support/CorpusReplay.h"
#include "support/InputFile.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/ToolError.h"

#include <QFile>
#include <QtEndian>

#include <gmock/gmock.h>

#include <optional>
#include <tuple>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

std::span<const uint8_t> bytesOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const uint8_t *>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

QByteArray asByteArray(std::span<const uint8_t> bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray littleEndian(quint32 value)
{
    const quint32 bytes = qToLittleEndian(value);
    return {reinterpret_cast<const char *>(&bytes), sizeof bytes};
}

/// The three pieces of a WAV file.
struct Pieces {
    QByteArray header;
    QByteArray payload;
    QByteArray trailing;

    [[nodiscard]] QByteArray all() const { return header + payload + trailing; }
};

Pieces piecesOf(WaveReader &reader)
{
    Pieces pieces;
    pieces.header = asByteArray(reader.header());
    std::vector<uint8_t> frames(size_t{reader.format().blockAlign} * 100);
    while (const size_t count = reader.readPayload(frames))
        pieces.payload += asByteArray(std::span(frames).first(count));
    EXPECT_EQ(reader.payloadBytesRead(), static_cast<uint64_t>(pieces.payload.size()));
    std::vector<uint8_t> block(7);
    while (const size_t count = reader.readTrailing(block))
        pieces.trailing += asByteArray(std::span(block).first(count));
    return pieces;
}

std::optional<ToolError> failureOf(const QByteArray &bytes)
{
    InputFile input(bytesOf(bytes));
    try {
        const WaveReader reader(input);
    } catch (const ToolError &error) {
        return error;
    }
    return std::nullopt;
}

void expectInvalid(const QByteArray &bytes, const char *text)
{
    const std::optional<ToolError> error = failureOf(bytes);
    ASSERT_TRUE(error) << text;
    EXPECT_EQ(error->kind(), ToolError::Kind::InvalidInput);
    EXPECT_THAT(error->what(), HasSubstr(text));
}

/// A WAV file of 16-bit stereo whose data chunk says what it likes.
QByteArray wavSaying(quint32 dataBytes, const QByteArray &afterHead)
{
    QByteArray bytes = wavBytes({.frames = 1}).first(40);
    return bytes + littleEndian(dataBytes) + afterHead;
}

TEST(WaveReader, TellsTheFormat)
{
    InputFile input(bytesOf(wavBytes({.rate = 96'000, .bits = 24, .channels = 6, .frames = 10})));
    const WaveReader reader(input);
    EXPECT_TRUE(reader.format().isIntegerPcm());
    EXPECT_EQ(reader.format().channels, 6);
    EXPECT_EQ(reader.format().sampleRateHz, 96'000U);
    EXPECT_EQ(reader.format().blockAlign, 18);
    EXPECT_EQ(reader.format().bitsPerSample, 24);
    EXPECT_EQ(reader.declaredDataBytes(), 180U);
    EXPECT_FALSE(reader.hasUnknownSize());
}

TEST(WaveReader, ResolvesTheExtensibleFormat)
{
    InputFile input(bytesOf(wavBytes({.bits = 24, .frames = 10, .extensible = true})));
    const WaveReader reader(input);
    EXPECT_TRUE(reader.format().isIntegerPcm());
    EXPECT_EQ(reader.format().channelMask, 3U);
}

TEST(WaveReader, TellsFloatFromInteger)
{
    const TestFolder folder;
    const QString path = folder.path(u"float.wav"_s);
    const ProgramResult made = runProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                                        u"sine=d=0.1"_s, u"-c:a"_s, u"pcm_f32le"_s, path});
    ASSERT_EQ(made.exitStatus, 0) << made.errors.constData();
    InputFile input(path.toStdString());
    const WaveReader reader(input);
    EXPECT_EQ(reader.format().formatTag, 3);
    EXPECT_FALSE(reader.format().isIntegerPcm());
}

TEST(WaveReader, SplitsAFileIntoHeaderPayloadAndTheRest)
{
    const SoundShape shape{.bits = 8, .channels = 1, .frames = 999};
    const QByteArray before = riffChunk("LIST", "odd") + riffChunk("junk", QByteArray(100'000, 'j'));
    const QByteArray after = riffChunk("id3 ", "tag");
    const QByteArray bytes = wavBytes(shape, before, after);
    InputFile input(bytesOf(bytes));
    WaveReader reader(input);
    const Pieces pieces = piecesOf(reader);
    EXPECT_EQ(pieces.header.last(8).first(4), "data");
    EXPECT_EQ(pieces.payload, makeSamples(shape));
    EXPECT_EQ(pieces.trailing, QByteArray(1, '\0') + after);
    EXPECT_EQ(pieces.all(), bytes);
}

TEST(WaveReader, LeavesAPartOfAFrameToTheTrailingBytes)
{
    for (const quint32 declared : {4'006U, 8'000U, 4'005U}) {
        const QByteArray bytes = wavSaying(declared, QByteArray(4'006, 'x') + "after");
        InputFile input(bytesOf(bytes));
        WaveReader reader(input);
        EXPECT_FALSE(reader.hasUnknownSize());
        const Pieces pieces = piecesOf(reader);
        EXPECT_EQ(pieces.payload.size(), declared == 8'000 ? 4'008 : 4'004);
        EXPECT_EQ(pieces.all(), bytes);
    }
}

TEST(WaveReader, ReadsToTheEndWhenTheSizeIsUnknown)
{
    for (const quint32 declared : {0U, 0xFFFF'FFFFU}) {
        const QByteArray bytes = wavSaying(declared, QByteArray(4'003, 'x'));
        InputFile input(bytesOf(bytes));
        WaveReader reader(input);
        EXPECT_TRUE(reader.hasUnknownSize());
        const Pieces pieces = piecesOf(reader);
        EXPECT_EQ(pieces.payload.size(), 4'000);
        EXPECT_EQ(pieces.all(), bytes);
    }
}

TEST(WaveReader, BelievesAnEmptyDataChunkWhereTheWholeFileIsAccountedFor)
{
    const QByteArray tail = riffChunk("LIST", "INFOICMT");
    const auto accounted = static_cast<quint32>(36 + tail.size());
    for (const quint32 riffBytes : {accounted, accounted + 100}) {
        const QByteArray bytes = wavSaying(0, tail).replace(4, 4, littleEndian(riffBytes));
        InputFile input(bytesOf(bytes));
        WaveReader reader(input);
        EXPECT_FALSE(reader.hasUnknownSize());
        const Pieces pieces = piecesOf(reader);
        EXPECT_EQ(pieces.payload, "");
        EXPECT_EQ(pieces.trailing, tail);
    }
    // A recording that was not finished.
    for (const quint32 riffBytes : {0U, 36U, accounted - 1, 0xFFFF'FFFFU}) {
        InputFile input(bytesOf(wavSaying(0, tail).replace(4, 4, littleEndian(riffBytes))));
        WaveReader reader(input);
        EXPECT_TRUE(reader.hasUnknownSize());
        EXPECT_EQ(piecesOf(reader).payload, tail);
    }
}

TEST(WaveReader, TellsHowMuchSoundThereIs)
{
    // Declared; present, a part of a frame with it; expected.
    const std::tuple<quint32, qsizetype, uint64_t> cases[] = {
        {4'006, 5'000, 4'004}, {8'000, 4'003, 4'000}, {0xFFFF'FFFF, 4'003, 4'000}, {0, 4'003, 4'000}, {0, 0, 0}};
    for (const auto &[declared, present, expected] : cases) {
        InputFile input(bytesOf(wavSaying(declared, QByteArray(present, 'x'))));
        WaveReader reader(input);
        EXPECT_EQ(reader.payloadBytesPresent(), expected) << declared;
        const bool isUnknown = reader.hasUnknownSize();
        EXPECT_EQ(reader.payloadBytesDeclared(), isUnknown ? std::nullopt : std::optional<uint64_t>(declared / 4 * 4));
        EXPECT_EQ(static_cast<uint64_t>(piecesOf(reader).payload.size()), expected) << declared;
        EXPECT_EQ(reader.payloadBytesPresent(), 0U);
    }
}

TEST(WaveReader, KnowsThatAnEmptyFileIsEmpty)
{
    InputFile input(bytesOf(wavSaying(0, {})));
    WaveReader reader(input);
    EXPECT_FALSE(reader.hasUnknownSize());
    EXPECT_EQ(piecesOf(reader).all(), wavSaying(0, {}));
}

TEST(WaveReader, RefusesWhatIsNoWavFile)
{
    const QByteArray wav = wavBytes({.frames = 10});
    expectInvalid("", "this is no WAV file");
    expectInvalid("RIFF", "this is no WAV file");
    expectInvalid("fLaC" + QByteArray(100, '\0'), "this is no WAV file");
    expectInvalid("RIFF____AVI " + QByteArray(100, '\0'), "this is no WAV file");
    expectInvalid(wav.first(12), "no data chunk");
    expectInvalid(wav.first(30), "no data chunk");
    expectInvalid(wav.first(36), "no data chunk");
    expectInvalid(wav.first(43), "no data chunk");
    expectInvalid("RIFF____WAVE" + wav.mid(36), "no fmt chunk");
    expectInvalid("RIFF____WAVE" + riffChunk("fmt ", "short") + wav.mid(36), "fmt chunk of the WAV file is too short");
}

TEST(WaveReader, RefusesAFormatThatContradictsItself)
{
    const QByteArray wav = wavBytes({.frames = 10});
    const auto changed = [&wav](qsizetype at, char value) { return QByteArray(wav).replace(at, 1, &value, 1); };
    expectInvalid(changed(22, 0), "no channels");
    expectInvalid(changed(32, 0), "no channels");
    expectInvalid(changed(22, 3), "contradicts itself");
    expectInvalid(changed(34, 24), "contradicts itself");
    EXPECT_FALSE(failureOf(changed(34, 13))) << "13 bits in containers of 16";
}

TEST(WaveReader, RefusesOtherKindsOfRiffByName)
{
    for (const QByteArray &kind : {QByteArray("RF64"), QByteArray("RIFX")}) {
        const std::optional<ToolError> error = failureOf(QByteArray(wavBytes({.frames = 10})).replace(0, 4, kind));
        ASSERT_TRUE(error);
        EXPECT_EQ(error->kind(), ToolError::Kind::UnsupportedFormat);
        EXPECT_THAT(error->what(), HasSubstr((kind + " files are not supported").toStdString()));
    }
}

TEST(WaveReader, BelievesNoSizeBeforeTheBytesAreThere)
{
    const QByteArray head = wavBytes({.frames = 1}).first(36);
    const AllocationMeter meter;
    expectInvalid(head + "junk" + littleEndian(63 << 20) + "few", "no data chunk");
    expectInvalid(head + "junk" + littleEndian(0xFFFF'FFFF) + "few", "no data chunk in its first 64 MiB");
    EXPECT_LT(meter.peakBytes(), 1U << 20);
}

TEST(WaveReader, WithstandsDamagedFiles)
{
    EXPECT_TRUE(replayCorpus(QString::fromLocal8Bit(NURV_CORPUS)));
}

TEST(CanonicalWaveHeader, IsReadByOtherPrograms)
{
    const SoundShape shape{.rate = 48'000, .bits = 24, .channels = 1, .frames = 333};
    const TestFolder folder;
    const QByteArray header = asByteArray(canonicalWaveHeader({1, 48'000, 24}, 999));
    EXPECT_EQ(header.size(), 44);
    const QString path = folder.write(u"a.wav"_s, header + makeSamples(shape) + '\0');
    EXPECT_TRUE(sameSound(path, folder.write(u"b.wav"_s, wavBytes(shape))));
    EXPECT_EQ(qFromLittleEndian<quint32>(header.constData() + 4), 36U + 999U + 1U);
}

TEST(CanonicalWaveHeader, SaysUnknownForSizesThatNeedMoreThan32Bits)
{
    const PcmFormat format{.channels = 2, .sampleRateHz = 44'100, .bitsPerSample = 16};
    const QByteArray header = asByteArray(canonicalWaveHeader(format, uint64_t{5} << 30));
    EXPECT_EQ(header.mid(4, 4), littleEndian(0xFFFF'FFFF));
    EXPECT_EQ(header.last(4), littleEndian(0xFFFF'FFFF));
    const QByteArray borderline = asByteArray(canonicalWaveHeader(format, 0xFFFF'FFF0));
    EXPECT_EQ(borderline.mid(4, 4), littleEndian(0xFFFF'FFFF));
    EXPECT_EQ(borderline.last(4), littleEndian(0xFFFF'FFF0));
}

/// An RF64 file of 16-bit stereo with those sizes in its chunks.
QByteArray rf64Saying(quint64 wideBytes, quint32 dataBytes, const QByteArray &data)
{
    QByteArray sizes = littleEndian(0) + littleEndian(0);
    sizes += littleEndian(static_cast<quint32>(wideBytes)) + littleEndian(static_cast<quint32>(wideBytes >> 32));
    QByteArray bytes = wavBytes({.frames = 1}).first(40);
    bytes.replace(0, 8, QByteArray("RF64") + littleEndian(0xFFFFFFFF));
    bytes.insert(12, riffChunk("ds64", sizes + QByteArray(12, '\0')));
    return bytes + littleEndian(dataBytes) + data;
}

TEST(WaveReader, ReadsRf64ForThoseWhoAskForIt)
{
    const QByteArray data(400, 'x');
    const auto payloadOf = [](const QByteArray &bytes) {
        InputFile input(bytesOf(bytes));
        const WaveReader reader(input, WaveReader::Kinds::RiffAndRf64);
        return std::pair(reader.hasUnknownSize(), reader.payloadBytesPresent());
    };
    EXPECT_EQ(payloadOf(rf64Saying(300, 0xFFFFFFFF, data)), std::pair(false, std::optional<uint64_t>(300)));
    EXPECT_EQ(payloadOf(rf64Saying(0, 200, data)), std::pair(false, std::optional<uint64_t>(200)));
    EXPECT_EQ(payloadOf(rf64Saying(0, 0xFFFFFFFF, data)), std::pair(true, std::optional<uint64_t>(400)));
    InputFile large(bytesOf(rf64Saying(uint64_t{5} << 32, 0xFFFFFFFF, data)));
    EXPECT_EQ(WaveReader(large, WaveReader::Kinds::RiffAndRf64).declaredDataBytes(), uint64_t{5} << 32);
    InputFile lying(bytesOf(rf64Saying(~uint64_t{0}, 0xFFFFFFFF, data)));
    EXPECT_THROW(WaveReader(lying, WaveReader::Kinds::RiffAndRf64), ToolError);
    EXPECT_TRUE(failureOf(rf64Saying(300, 0xFFFFFFFF, data)));
}

} // namespace

} // namespace nurv::test
