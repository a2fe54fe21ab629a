// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RunTtaenc.h"
#include "TtaSounds.h"

#include <QFileInfo>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

/// shntool with ttaenc where it looks for it.
ProgramResult runShntool(const QStringList &arguments)
{
    const QString path = QFileInfo(ttaenc()).path() + u':' + qEnvironmentVariable("PATH");
    return runProgram(u"/usr/bin/env"_s, QStringList{u"PATH="_s + path, u"shntool"_s} + arguments);
}

class TtaencForShntool : public ::testing::TestWithParam<unsigned> {
protected:
    /// A sound of five CD seconds, so that shntool has no complaint about its length.
    TtaencForShntool()
        : m_shape(shapeOf(2, GetParam(), 44100 * 5)), m_wav(wavOf(makePcm(Sound::Music, m_shape), m_shape)),
          m_wavPath(m_folder.write(u"a.wav"_s, m_wav)), m_ttaPath(m_folder.path(u"b.tta"_s))
    {
        EXPECT_EQ(runTtaenc({m_wavPath, u"-o"_s, m_ttaPath}).exitStatus, 0);
    }

    TestFolder m_folder;
    TtaHeader m_shape;
    QByteArray m_wav;
    QString m_wavPath;
    QString m_ttaPath;
};

TEST_P(TtaencForShntool, TellsTheLengthAndTheFormat)
{
    const ProgramResult len = runShntool({u"len"_s, m_ttaPath});
    EXPECT_EQ(len.exitStatus, 0) << len.errors.constData();
    EXPECT_THAT(len.output.toStdString(), HasSubstr("0:05."));
    EXPECT_THAT(len.output.toStdString(), HasSubstr(std::to_string(m_wav.size())));
    EXPECT_THAT(len.output.toStdString(), HasSubstr("tta"));
    const ProgramResult info = runShntool({u"info"_s, m_ttaPath});
    EXPECT_EQ(info.exitStatus, 0) << info.errors.constData();
    EXPECT_THAT(info.output.toStdString(), HasSubstr("WAVE format:                  0x0001 (Microsoft PCM)"));
    EXPECT_THAT(info.output.toStdString(),
                HasSubstr("Data size:                    " + std::to_string(m_wav.size() - 44)));
}

TEST_P(TtaencForShntool, GivesTheHashAndTheSoundOfTheWavFile)
{
    const auto hashOf = [](const QString &path) {
        return runShntool({u"hash"_s, u"-m"_s, path}).output.split(' ').first();
    };
    EXPECT_EQ(hashOf(m_ttaPath).size(), 32);
    EXPECT_EQ(hashOf(m_ttaPath), hashOf(m_wavPath));
    const ProgramResult cmp = runShntool({u"cmp"_s, m_ttaPath, m_wavPath});
    EXPECT_EQ(cmp.exitStatus, 0) << cmp.output.constData() << cmp.errors.constData();
    EXPECT_THAT((cmp.output + cmp.errors).toStdString(), HasSubstr("identical"));
}

TEST_P(TtaencForShntool, ConvertsBothWays)
{
    const QString there = m_folder.makeFolder(u"there"_s);
    const QString back = m_folder.makeFolder(u"back"_s);
    const ProgramResult encode = runShntool({u"conv"_s, u"-o"_s, u"tta"_s, u"-d"_s, there, m_wavPath});
    ASSERT_EQ(encode.exitStatus, 0) << encode.errors.constData();
    EXPECT_TRUE(m_folder.read(u"there/a.tta"_s) == m_folder.read(u"b.tta"_s));
    const ProgramResult decode = runShntool({u"conv"_s, u"-o"_s, u"wav"_s, u"-d"_s, back, there + u"/a.tta"_s});
    ASSERT_EQ(decode.exitStatus, 0) << decode.errors.constData();
    EXPECT_TRUE(m_folder.read(u"back/a.wav"_s) == m_wav);
}

INSTANTIATE_TEST_SUITE_P(Bits, TtaencForShntool, ::testing::Values(8U, 16U, 24U));

} // namespace

} // namespace nurv::test
