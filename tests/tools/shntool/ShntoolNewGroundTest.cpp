// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QCryptographicHash>
#include <QFile>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

ProgramResult runShntool(const QStringList &arguments)
{
    return runProgram(QString::fromLocal8Bit(NURV_SHNTOOL), arguments);
}

/// What no program of 2009 reads: made and checked by other programs.
struct Recording {
    const char *name;
    SoundShape shape;
};

const Recording kRecordings[] = {
    {"Cd24", {.bits = 24, .frames = 44'100}},
    {"Mono24Odd", {.bits = 24, .channels = 1, .frames = 4411, .seed = 2}},
    {"Studio96", {.rate = 96'000, .bits = 24, .frames = 96'000, .seed = 3}},
    {"Studio192", {.rate = 192'000, .bits = 24, .frames = 50'000, .seed = 4}},
    {"Surround", {.rate = 48'000, .bits = 16, .channels = 6, .frames = 30'000, .seed = 5}},
    {"Surround24", {.rate = 48'000, .bits = 24, .channels = 6, .frames = 30'000, .seed = 6}},
    {"Mono8", {.rate = 22'050, .bits = 8, .channels = 1, .frames = 22'051, .seed = 7}},
};

class ShntoolNewGround : public ::testing::TestWithParam<Recording> {
protected:
    ShntoolNewGround() : m_samples(makeSamples(GetParam().shape))
    {
        const SoundShape &shape = GetParam().shape;
        convert(u"/usr/bin/flac"_s,
                {u"-s"_s, u"--force-raw-format"_s, u"--endian=little"_s,
                 shape.bits == 8 ? u"--sign=unsigned"_s : u"--sign=signed"_s, u"--channels=%1"_s.arg(shape.channels),
                 u"--bps=%1"_s.arg(shape.bits), u"--sample-rate=%1"_s.arg(shape.rate), u"-o"_s, path(u"a.flac"_s),
                 m_folder.write(u"samples"_s, m_samples)});
    }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.path(name); }
    [[nodiscard]] QByteArray digest() const
    {
        return QCryptographicHash::hash(m_samples, QCryptographicHash::Md5).toHex();
    }
    void convert(const QString &program, const QStringList &arguments) const
    {
        const ProgramResult result = runProgram(program, arguments);
        ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
    }

    TestFolder m_folder;
    QByteArray m_samples;
};

TEST_P(ShntoolNewGround, HashesTheSamplesOfEveryFormat)
{
    const SoundShape &shape = GetParam().shape;
    QStringList names{path(u"a.flac"_s)};
    convert(u"/usr/bin/flac"_s, {u"-s"_s, u"-d"_s, u"-o"_s, path(u"a.wav"_s), path(u"a.flac"_s)});
    names.append(path(u"a.wav"_s));
    if (shape.bits > 8) {
        convert(u"/usr/bin/ffmpeg"_s,
                {u"-v"_s, u"error"_s, u"-i"_s, path(u"a.wav"_s), u"-c:a"_s, u"alac"_s, path(u"a.m4a"_s)});
        names.append(path(u"a.m4a"_s));
    }
    convert(u"/usr/bin/wavpack"_s, {u"-q"_s, path(u"a.wav"_s), u"-o"_s, path(u"a.wv"_s)});
    names.append(path(u"a.wv"_s));
    const QStringList ffmpeg{u"-v"_s, u"error"_s, u"-i"_s, path(u"a.wav"_s), u"-c:a"_s};
    const QString codec = shape.bits == 8 ? u"pcm_u8"_s : u"pcm_s%1le"_s.arg(shape.bits);
    convert(u"/usr/bin/ffmpeg"_s, ffmpeg + QStringList{codec, u"-rf64"_s, u"always"_s, path(u"rf64.wav"_s)});
    const QString bigEndian = shape.bits == 8 ? u"pcm_s8"_s : u"pcm_s%1be"_s.arg(shape.bits);
    convert(u"/usr/bin/ffmpeg"_s, ffmpeg + QStringList{bigEndian, path(u"a.aiff"_s)});
    convert(u"/usr/bin/ffmpeg"_s, ffmpeg + QStringList{u"tta"_s, path(u"a.tta"_s)});
    names.append(path(u"a.aiff"_s));
    // To sox this name is a pattern, and the other one what it matches.
    ASSERT_TRUE(QFile::copy(path(u"a.aiff"_s), path(u"b [SBD].aiff"_s)));
    ASSERT_TRUE(QFile::copy(path(u"a.wav"_s), path(u"b S.aiff"_s)));
    names.append(path(u"b [SBD].aiff"_s));
    // Its RF64 files count the pad byte as sound, and its TTA files of 8 bits have 16.
    if (m_samples.size() % 2 == 0)
        names.append(path(u"rf64.wav"_s));
    if (shape.bits > 8)
        names.append(path(u"a.tta"_s));
    for (const QString &name : names) {
        const ProgramResult result = runShntool({u"hash"_s, u"-q"_s, name});
        EXPECT_EQ(result.exitStatus, 0) << qPrintable(name) << result.errors.constData();
        EXPECT_EQ(result.output.left(32), digest()) << qPrintable(name);
    }
}

TEST_P(ShntoolNewGround, HashEqualsTheSumInTheFile)
{
    const ProgramResult sum = runProgram(u"/usr/bin/metaflac"_s, {u"--show-md5sum"_s, path(u"a.flac"_s)});
    const ProgramResult result = runShntool({u"hash"_s, u"-q"_s, path(u"a.flac"_s)});
    if (GetParam().shape.bits == 8)
        GTEST_SKIP() << "WAV files of 8 bits have no signs, FLAC files have";
    EXPECT_EQ(result.output.left(32), sum.output.trimmed());
}

TEST_P(ShntoolNewGround, JoiningThePiecesGivesTheWhole)
{
    const int length = static_cast<int>(m_samples.size() / 3);
    const int block = GetParam().shape.bits / 8 * GetParam().shape.channels;
    for (const QString &format : {u"flac"_s, u"wav"_s}) {
        ASSERT_EQ(runShntool({u"split"_s, u"-q"_s, u"-O"_s, u"always"_s, u"-o"_s, format, u"-l"_s,
                              QString::number(length / block * block), u"-d"_s, m_folder.path(), path(u"a.flac"_s)})
                      .exitStatus,
                  0);
        QStringList join{u"join"_s, u"-q"_s, u"-n"_s, u"-O"_s, u"always"_s, u"-o"_s, format, u"-d"_s, m_folder.path()};
        for (const QString &name : m_folder.list()) {
            if (name.startsWith(u"split-track") && name.endsWith(format))
                join.append(path(name));
        }
        ASSERT_GE(join.size(), 12);
        const ProgramResult result = runShntool(join);
        ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(sameSound(path(u"joined."_s + format), path(u"a.flac"_s))) << qPrintable(format);
    }
}

TEST_P(ShntoolNewGround, EncodesWhatOthersDecode)
{
    QStringList formats{u"flac"_s, u"wv"_s, u"tta"_s, u"aiff"_s};
    if (GetParam().shape.channels <= 2)
        formats.append(u"ape"_s);
    for (const QString &format : formats) {
        const QString output = path(u"out."_s + format);
        const ProgramResult result =
            runShntool({u"conv"_s, u"-q"_s, u"-o"_s, format, u"-n"_s, output, path(u"a.flac"_s)});
        EXPECT_EQ(result.exitStatus, 0) << qPrintable(format) << result.errors.constData();
        EXPECT_TRUE(sameSound(output, path(u"a.flac"_s))) << qPrintable(format);
        EXPECT_EQ(runShntool({u"hash"_s, u"-q"_s, output}).output.left(32), digest()) << qPrintable(format);
    }
}

TEST_P(ShntoolNewGround, ConvertsToWhatFlacDecodes)
{
    convert(u"/usr/bin/flac"_s, {u"-s"_s, u"-d"_s, u"-o"_s, path(u"a.wav"_s), path(u"a.flac"_s)});
    EXPECT_EQ(runShntool({u"conv"_s, u"-q"_s, u"-n"_s, path(u"b.wav"_s), path(u"a.flac"_s)}).exitStatus, 0);
    EXPECT_TRUE(m_folder.read(u"b.wav"_s) == m_folder.read(u"a.wav"_s));
}

INSTANTIATE_TEST_SUITE_P(Recordings, ShntoolNewGround, ::testing::ValuesIn(kRecordings),
                         [](const auto &tested) { return std::string(tested.param.name); });

} // namespace

} // namespace nurv::test
