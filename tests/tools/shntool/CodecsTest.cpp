// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QList>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

/// Those of our codecs, by their endings.
const QString kFormats[] = {u"shn"_s, u"tta"_s, u"ape"_s};

struct Sound {
    const char *name;
    SoundShape shape;
    const char *length; ///< as shntool prints it: frames of CDs, else milliseconds
};

const Sound kSounds[] = {
    {"CdStereo", {.frames = 588 * 75 * 3}, "0:03.00"},
    {"CdOffSector", {.frames = 588 * 75 + 100, .seed = 2}, "0:01.00"},
    {"Mono8Bit", {.rate = 22'050, .bits = 8, .channels = 1, .frames = 22'051, .seed = 3}, "0:01.000"},
};

ProgramResult runShntool(const QStringList &arguments)
{
    return runProgram(QString::fromLocal8Bit(NURV_SHNTOOL), arguments);
}

/// A sound as a WAV file and, made by shntool with our codec, in a compressed format.
class ShntoolCodec : public ::testing::TestWithParam<std::tuple<QString, Sound>> {
protected:
    ShntoolCodec()
        : m_format(std::get<0>(GetParam())), m_sound(std::get<1>(GetParam())), m_wav(m_folder.path(u"sound.wav"_s)),
          m_coded(m_folder.path(u"sound."_s + m_format))
    {
        writeWav(m_wav, m_sound.shape);
        const ProgramResult result =
            runShntool({u"conv"_s, u"-O"_s, u"never"_s, u"-o"_s, m_format, u"-d"_s, m_folder.path(), m_wav});
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        EXPECT_TRUE(QFileInfo::exists(m_coded));
    }

    TestFolder m_folder;
    QString m_format;
    Sound m_sound;
    QString m_wav;
    QString m_coded;
};

TEST_P(ShntoolCodec, TellsTheLength)
{
    const ProgramResult result = runShntool({u"len"_s, u"-c"_s, u"-t"_s, m_coded});
    EXPECT_EQ(result.exitStatus, 0);
    const QList<QByteArray> words = result.output.simplified().split(' ');
    ASSERT_GE(words.size(), 3) << result.output.constData() << result.errors.constData();
    EXPECT_EQ(words[0], m_sound.length);
    EXPECT_EQ(words[1], QByteArray::number(QFileInfo(m_wav).size()));
    EXPECT_TRUE(words.contains(m_format.toLatin1())) << result.output.constData();
}

TEST_P(ShntoolCodec, TellsTheFormatOfTheSound)
{
    const ProgramResult result = runShntool({u"info"_s, m_coded});
    EXPECT_EQ(result.exitStatus, 0);
    const std::string text = result.output.toStdString();
    EXPECT_THAT(text, HasSubstr(m_format.toStdString() + " format module"));
    EXPECT_THAT(text, ContainsRegex("Channels: +" + std::to_string(m_sound.shape.channels) + "\n"));
    EXPECT_THAT(text, ContainsRegex("Bits/sample: +" + std::to_string(m_sound.shape.bits) + "\n"));
    EXPECT_THAT(text, ContainsRegex("Samples/sec: +" + std::to_string(m_sound.shape.rate) + "\n"));
    EXPECT_THAT(text, ContainsRegex("Non-canonical header: +no\n"));
    EXPECT_THAT(text, ContainsRegex("Inconsistent header: +no\n"));
}

TEST_P(ShntoolCodec, HashesTheSamples)
{
    const ProgramResult result = runShntool({u"hash"_s, u"-m"_s, m_coded});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output.left(32),
              QCryptographicHash::hash(makeSamples(m_sound.shape), QCryptographicHash::Md5).toHex());
}

TEST_P(ShntoolCodec, ComparesWithTheWavFile)
{
    EXPECT_EQ(runShntool({u"cmp"_s, m_coded, m_wav}).exitStatus, 0);
    SoundShape other = m_sound.shape;
    other.seed += 100;
    EXPECT_EQ(runShntool({u"cmp"_s, m_coded, writeWav(m_folder.path(u"other.wav"_s), other)}).exitStatus, 1);
}

TEST_P(ShntoolCodec, DecodesToTheNameThatIsGiven)
{
    const QString out = m_folder.path(u"any name.wav"_s);
    const ProgramResult result =
        runShntool({u"conv"_s, u"-P"_s, u"pct"_s, u"-O"_s, u"always"_s, u"-o"_s, u"wav"_s, u"-n"_s, out, m_coded});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(m_folder.read(u"any name.wav"_s) == wavBytes(m_sound.shape));
}

TEST_P(ShntoolCodec, EncodesToTheNameThatIsGiven)
{
    const QString out = m_folder.path(u"any name."_s + m_format);
    const ProgramResult result = runShntool({u"conv"_s, u"-O"_s, u"never"_s, u"-o"_s, m_format, u"-n"_s, out, m_wav});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(m_folder.read(u"any name."_s + m_format) == m_folder.read(u"sound."_s + m_format));
    EXPECT_EQ(m_folder.list().size(), 3);
}

TEST_P(ShntoolCodec, MakesNothingOfATruncatedFile)
{
    const QByteArray whole = m_folder.read(u"sound."_s + m_format);
    const QString cut = m_folder.write(u"cut."_s + m_format, whole.first(whole.size() * 2 / 3));
    const QStringList before = m_folder.list();
    const ProgramResult result =
        runShntool({u"conv"_s, u"-O"_s, u"always"_s, u"-n"_s, m_folder.path(u"out.wav"_s), cut});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("shntool [conv]: warning: "));
    EXPECT_EQ(m_folder.list(), before);
    EXPECT_EQ(runShntool({u"hash"_s, cut}).exitStatus, 1);
}

std::string caseName(const ::testing::TestParamInfo<ShntoolCodec::ParamType> &tested)
{
    return std::get<0>(tested.param).toStdString() + std::get<1>(tested.param).name;
}

INSTANTIATE_TEST_SUITE_P(Formats, ShntoolCodec,
                         ::testing::Combine(::testing::ValuesIn(kFormats), ::testing::ValuesIn(kSounds)), caseName);

} // namespace

} // namespace nurv::test
