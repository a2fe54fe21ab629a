// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Both directions with an independent implementation: package libjmac-java, if installed.
#include "ApeSounds.h"
#include "RunMac.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class MacAgainstJmac : public ::testing::TestWithParam<ApeLevel> {
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"jmac"_s).isEmpty() || QStandardPaths::findExecutable(u"java"_s).isEmpty())
            GTEST_SKIP() << "jmac is not installed";
    }

    /// Encodes with both, and has each file decoded by the other program.
    static void expectTheSame(const QByteArray &wav)
    {
        const TestFolder folder;
        const QString wavPath = folder.write(u"a.wav"_s, wav);
        const QString ours = folder.path(u"ours.ape"_s);
        const QString theirs = folder.path(u"theirs.ape"_s);
        const QString level = QString::number(static_cast<int>(GetParam()) / 1000);
        ASSERT_EQ(runMac({wavPath, ours, levelOption(GetParam())}).exitStatus, 0);
        ASSERT_EQ(runProgram(u"jmac"_s, {u"c"_s + level, wavPath, theirs}).exitStatus, 0);
        EXPECT_TRUE(isSame(folder.read(u"ours.ape"_s), folder.read(u"theirs.ape"_s)));
        ASSERT_EQ(runProgram(u"jmac"_s, {u"d"_s, ours, folder.path(u"b.wav"_s)}).exitStatus, 0);
        EXPECT_TRUE(isSame(folder.read(u"b.wav"_s), wav));
        const ProgramResult decode = runMac({theirs, folder.path(u"c.wav"_s), u"-d"_s});
        ASSERT_EQ(decode.exitStatus, 0) << decode.errors.constData();
        EXPECT_TRUE(isSame(folder.read(u"c.wav"_s), wav));
    }
};

TEST_P(MacAgainstJmac, WritesTheSameBytesAtEachDepth)
{
    for (const unsigned bits : {8U, 16U, 24U}) {
        SCOPED_TRACE(bits);
        expectTheSame(wavOf(Sound::Music, {.bits = bits}, 100000));
    }
}

TEST_P(MacAgainstJmac, WritesTheSameBytesOfNoiseInOneChannel)
{
    expectTheSame(wavOf(Sound::Noise, {.bits = 24, .channels = 1}, 30000));
}

INSTANTIATE_TEST_SUITE_P(Levels, MacAgainstJmac, ::testing::ValuesIn(kApeLevels),
                         [](const auto &tested) { return "Level" + std::to_string(static_cast<int>(tested.param)); });

} // namespace

} // namespace nurv::test
