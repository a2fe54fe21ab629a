// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QtEndian>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

constexpr int kRiffSizeAt = 4;
constexpr int kDataSizeAt = 40;

/// Sound that comes through a pipe, for `conv -t`.
class ShntoolPipe : public ::testing::Test {
protected:
    ShntoolPipe() : m_wav(wavBytes({.frames = 20'000})) { m_folder.write(u"out.wav"_s, "former"); }

    [[nodiscard]] ProgramResult convert(const QByteArray &input) const
    {
        return runProgram(QString::fromLocal8Bit(NURV_SHNTOOL),
                          {u"conv"_s, u"-t"_s, u"-O"_s, u"always"_s, u"-n"_s, m_folder.path(u"out.wav"_s)}, input);
    }
    [[nodiscard]] QByteArray withSizes(quint32 riff, quint32 data) const
    {
        QByteArray bytes = m_wav;
        qToLittleEndian(riff, bytes.data() + kRiffSizeAt);
        qToLittleEndian(data, bytes.data() + kDataSizeAt);
        return bytes;
    }

    TestFolder m_folder;
    QByteArray m_wav;
};

TEST_F(ShntoolPipe, RefusesSoundThatEndsEarly)
{
    const QByteArray chunk("LIST\4\0\0\0text", 12);
    for (const QByteArray &input : {m_wav.left(44), m_wav.left(1000), m_wav.chopped(1),
                                    wavBytes({.frames = 20'000}, {}, chunk).chopped(4)}) {
        const ProgramResult result = convert(input);
        EXPECT_EQ(result.exitStatus, 1) << input.size();
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("input data seems to be truncated -- skipping."));
        EXPECT_EQ(m_folder.read(u"out.wav"_s), "former") << input.size();
        EXPECT_EQ(m_folder.list().size(), 1);
    }
}

TEST_F(ShntoolPipe, RefusesWhatIsNoSound)
{
    for (const QByteArray &input : {QByteArray(), QByteArray("words"), QByteArray(5000, '\0'), m_wav.left(20)}) {
        const ProgramResult result = convert(input);
        EXPECT_EQ(result.exitStatus, 1) << input.size();
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("input data is no WAVE data -- skipping."));
        EXPECT_EQ(m_folder.read(u"out.wav"_s), "former") << input.size();
        EXPECT_EQ(m_folder.list().size(), 1);
    }
}

TEST_F(ShntoolPipe, TakesSoundOfUnknownLengthToItsEnd)
{
    const std::pair<quint32, quint32> sizes[] = {
        {0xFFFFFFFF, 0xFFFFFFFF}, {0, 0},          {36, 0},
        {0x7FFFF024, 0x7FFFF000}, // sox
        {0x80000023, 0x7FFFFFFF}, // lame
    };
    for (const auto &[riff, data] : sizes) {
        const ProgramResult result = convert(withSizes(riff, data));
        EXPECT_EQ(result.exitStatus, 0) << riff << ' ' << data << result.errors.constData();
        EXPECT_TRUE(m_folder.read(u"out.wav"_s) == withSizes(riff, data)) << riff << ' ' << data;
    }
}

TEST_F(ShntoolPipe, TakesWholeSoundAsItIs)
{
    const QByteArray chunk("LIST\4\0\0\0text", 12);
    for (const QByteArray &input :
         {m_wav, wavBytes({.frames = 0}), wavBytes({.bits = 8, .channels = 1, .frames = 2001}),
          wavBytes({.frames = 20'000}, {}, chunk), wavBytes({.bits = 24, .channels = 6, .frames = 2000})}) {
        const ProgramResult result = convert(input);
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(m_folder.read(u"out.wav"_s) == input) << input.size();
    }
    for (const QString &writer : {u"ffmpeg -v error -i \"$1\" -f wav -"_s, u"sox \"$1\" -t wav -"_s, u"flac -dcs \"$1\""_s}) {
        const QString flac = writeFlac(m_folder.path(u"in.flac"_s), {.frames = 20'000, .seed = 3});
        const ProgramResult result =
            runProgram(u"/bin/bash"_s, {u"-c"_s, writer + u" | \"$0\" conv -t -O always -n \"$2\""_s,
                                        QString::fromLocal8Bit(NURV_SHNTOOL), flac, m_folder.path(u"out.wav"_s)});
        EXPECT_EQ(result.exitStatus, 0) << qPrintable(writer) << result.errors.constData();
        m_folder.remove(u"in.flac"_s);
    }
}

} // namespace

} // namespace nurv::test
