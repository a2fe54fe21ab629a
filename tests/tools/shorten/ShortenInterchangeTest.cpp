// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// What other programs make of our streams, and of those that our decoder is tested with.
#include "ReferenceStream.h"
#include "ShortenTestSupport.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::shorten::test;
using nurv::test::decodedMd5;
using nurv::test::ProgramResult;
using nurv::test::runProgram;
using nurv::test::TestFolder;
using testing::HasSubstr;

namespace {

QByteArray asArray(const Bytes &bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray md5ByFfmpeg(const QString &name, const Bytes &file)
{
    const TestFolder folder;
    return decodedMd5(folder.write(name, asArray(file)));
}

/// The ffmpeg program reads the same samples from the stream as from the WAV file.
void expectSameSamples(const Bytes &wave, const Bytes &stream)
{
    EXPECT_EQ(md5ByFfmpeg(u"a.shn"_s, stream), md5ByFfmpeg(u"a.wav"_s, wave));
}

void expectSameSamples(const Wave &wave)
{
    SCOPED_TRACE(testing::PrintToString(wave));
    expectSameSamples(wave.file(), encoded(wave.file(), 256, 4, wave.channels <= 2));
}

QByteArray tools()
{
    return QFileInfo(QString::fromLocal8Bit(NURV_SHORTEN)).path().toLocal8Bit();
}

/// Runs shntool as the application does: with the resource folder on PATH.
ProgramResult runShntool(const QStringList &arguments)
{
    const QString path = QString::fromLocal8Bit("PATH=" + qgetenv("PATH") + ":" + tools());
    return runProgram(u"env"_s, QStringList{path, u"shntool"_s} + arguments);
}

} // namespace

TEST(ShortenInterchange, FfmpegReadsEverySound)
{
    for (const Sound sound : kAllSounds)
        expectSameSamples({.sound = sound, .frames = 5001});
}

TEST(ShortenInterchange, FfmpegReadsEverySoundOf8Bits)
{
    for (const Sound sound : kAllSounds)
        expectSameSamples({.sound = sound, .frames = 5001, .channels = 1, .bits = 8});
}

TEST(ShortenInterchange, FfmpegReadsEveryNumberOfChannels)
{
    for (unsigned channels = 1; channels <= 8; ++channels)
        expectSameSamples({.sound = Sound::Shifts, .frames = 3000, .channels = channels});
}

TEST(ShortenInterchange, FfmpegReadsEveryLength)
{
    for (const size_t frames : {1U, 255U, 256U, 257U, 25599U, 25600U, 25601U})
        expectSameSamples({.frames = frames});
}

TEST(ShortenInterchange, FfmpegReadsOtherBlockSizesAndMeans)
{
    const Bytes wave = Wave{.sound = Sound::Shifts, .frames = 6001}.file();
    const QByteArray expected = md5ByFfmpeg(u"a.wav"_s, wave);
    for (const uint32_t blockSize : {37U, 1024U, 16384U})
        EXPECT_EQ(md5ByFfmpeg(u"a.shn"_s, encoded(wave, blockSize, 4)), expected) << blockSize;
    for (const uint32_t meanCount : {0U, 1U, 32U})
        EXPECT_EQ(md5ByFfmpeg(u"a.shn"_s, encoded(wave, 256, meanCount)), expected) << meanCount;
}

TEST(ShortenInterchange, FfmpegReadsFilesWithOddChunksAndSizes)
{
    const Wave wave{.frames = 999, .channels = 1, .bits = 8};
    const Bytes list = chunk("LIST", 33, 0x55);
    for (const Bytes &file : {wave.file(list, {}), wave.file({}, list), wave.file({}, Bytes(3000, 0xA5))})
        expectSameSamples(file, encoded(file));
    const Wave stereo{.frames = 999};
    for (const size_t declared : {size_t{0}, size_t{3999}, size_t{20000}, size_t{0xFFFFFFFF}}) {
        SCOPED_TRACE(declared);
        Bytes file = stereo.header({}, declared, 0);
        append(file, stereo.data());
        expectSameSamples(file, encoded(file));
    }
}

TEST(ShortenInterchange, FfmpegAgreesOnTheStreamsThatTheDecoderIsTestedWith)
{
    const Wave wave{.frames = 3000};
    const QByteArray expected = md5ByFfmpeg(u"a.wav"_s, wave.file());
    for (const unsigned version : {0U, 1U, 2U}) {
        for (const uint32_t maxOrder : {0U, 3U, 8U}) {
            for (const uint32_t meanCount : {0U, 4U}) {
                const ReferenceStream::Settings settings{
                    .version = version, .maxOrder = maxOrder, .meanCount = meanCount};
                EXPECT_EQ(md5ByFfmpeg(u"a.shn"_s, mixedStream(wave, settings)), expected)
                    << "version " << version << ", order " << maxOrder << ", means " << meanCount;
            }
        }
    }
}

TEST(ShortenInterchange, ShntoolConvertsBothWays)
{
    const TestFolder folder;
    const Wave wave{.sound = Sound::Sweep, .frames = 588 * 200};
    const QString in = folder.write(u"a.wav"_s, asArray(wave.file({}, chunk("LIST", 20))));
    folder.makeFolder(u"shn"_s);
    folder.makeFolder(u"wav"_s);
    const ProgramResult there = runShntool({u"conv"_s, u"-o"_s, u"shn"_s, u"-d"_s, folder.path(u"shn"_s), in});
    EXPECT_EQ(there.exitStatus, 0) << there.errors.constData();
    const QString shn = folder.path(u"shn/a.shn"_s);
    const ProgramResult back = runShntool({u"conv"_s, u"-o"_s, u"wav"_s, u"-d"_s, folder.path(u"wav"_s), shn});
    EXPECT_EQ(back.exitStatus, 0) << back.errors.constData();
    EXPECT_TRUE(folder.read(u"wav/a.wav"_s) == folder.read(u"a.wav"_s));

    EXPECT_EQ(runShntool({u"cmp"_s, in, shn}).exitStatus, 0);
    const QByteArray hash = runShntool({u"hash"_s, u"-m"_s, in}).output.left(32);
    EXPECT_EQ(hash.size(), 32);
    EXPECT_EQ(runShntool({u"hash"_s, u"-m"_s, shn}).output.left(32), hash);
    const QByteArray length = runShntool({u"len"_s, shn}).output;
    EXPECT_THAT(length.toStdString(), HasSubstr("0:02.50"));
    EXPECT_THAT(length.toStdString(), HasSubstr("shn"));
}

TEST(ShortenInterchange, ShntoolRefusesWhatTheEncoderRefuses)
{
    const TestFolder folder;
    const Wave wide{.frames = 0, .bits = 24};
    Bytes file = wide.header({}, 600, 0);
    file.resize(file.size() + 600);
    const QString in = folder.write(u"a.wav"_s, asArray(file));
    const ProgramResult result = runShntool({u"conv"_s, u"-o"_s, u"shn"_s, u"-d"_s, folder.path(), in});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(ShortenInterchange, ShntoolSaysWhetherAFileIsSeekable)
{
    const TestFolder folder;
    const QString in = folder.write(u"a.wav"_s, asArray(Wave{.frames = 44100}.file()));
    const auto isSeekable = [&](const QStringList &options) {
        const QString out = folder.path(u"a.shn"_s);
        EXPECT_EQ(runProgram(QString::fromLocal8Bit(NURV_SHORTEN), options + QStringList{in, out}).exitStatus, 0);
        for (const QByteArray &line : runShntool({u"info"_s, out}).output.split('\n')) {
            if (line.contains("Seekable:"))
                return line.simplified();
        }
        return QByteArray();
    };
    EXPECT_EQ(isSeekable({}), "Seekable: yes");
    EXPECT_EQ(isSeekable({u"-v2"_s}), "Seekable: no");
}

TEST(ShortenInterchange, ShntoolReadsFilesWithTagsInFront)
{
    const TestFolder folder;
    const Wave wave{.frames = 44100};
    Bytes tagged = {'I', 'D', '3', 3, 0, 0, 0, 0, 0, 50};
    tagged.resize(60);
    append(tagged, encoded(wave.file()));
    const QString in = folder.write(u"a.shn"_s, asArray(tagged));
    EXPECT_THAT(runShntool({u"len"_s, in}).output.toStdString(), HasSubstr("0:01.00"));
}
