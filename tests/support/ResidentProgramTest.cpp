// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ResidentProgram.h"

#include "support/AudioFixtures.h"
#include "support/FileSizeLimit.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

std::shared_ptr<ResidentProgram> resident(const QString &name)
{
    return ResidentProgram::find(QStandardPaths::findExecutable(name));
}

QByteArray outputOfQProcess(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60'000));
    return process.readAllStandardOutput();
}

} // namespace

TEST(ResidentProgram, RunsTheProgramAsOftenAsAskedWithWhatItWouldSayOtherwise)
{
    const TestFolder folder;
    const QStringList arguments{u"-v"_s, u"error"_s, u"-show_streams"_s, writeWav(folder.path(u"a.wav"_s))};
    const auto program = resident(u"ffprobe"_s);
    ASSERT_NE(program, nullptr);
    const QByteArray expected = outputOfQProcess(u"ffprobe"_s, arguments);
    EXPECT_TRUE(expected.contains("codec_name=pcm_s16le"));
    for (int i = 0; i < 3; ++i) {
        const ProgramResult result = program->run(arguments, {});
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.output, expected);
        EXPECT_EQ(result.errors, "");
    }
}

TEST(ResidentProgram, TellsStatusAndErrors)
{
    const auto program = resident(u"ffprobe"_s);
    ASSERT_NE(program, nullptr);
    const ProgramResult result = program->run({u"-v"_s, u"error"_s, u"/nonexistent.wav"_s}, {});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.errors.contains("No such file or directory")) << result.errors.constData();
}

TEST(ResidentProgram, CarriesMoreThanAPipeHoldsThroughItsInputAndOutput)
{
    const auto program = resident(u"ffmpeg"_s);
    ASSERT_NE(program, nullptr);
    const SoundShape shape{.seconds = 20};
    const ProgramResult result =
        program->run({u"-v"_s, u"error"_s, u"-i"_s, u"pipe:0"_s, u"-f"_s, u"s16le"_s, u"pipe:1"_s}, wavBytes(shape));
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(result.output == makeSamples(shape));
}

TEST(ResidentProgram, RunsInTheFolderAndWithTheUmaskOfTheMoment)
{
    const TestFolder folder;
    const QString before = QDir::currentPath();
    const auto program = resident(u"ffmpeg"_s);
    ASSERT_NE(program, nullptr);
    writeWav(folder.path(u"a.wav"_s));
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    const mode_t mask = ::umask(077);
    const ProgramResult result = program->run({u"-v"_s, u"error"_s, u"-i"_s, u"a.wav"_s, u"b.wav"_s}, {});
    ::umask(mask);
    ASSERT_TRUE(QDir::setCurrent(before));
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    struct stat facts = {};
    ASSERT_EQ(::stat(QFile::encodeName(folder.path(u"b.wav"_s)).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600);
}

TEST(ResidentProgram, IsNoChildOfTheTest)
{
    const auto program = resident(u"ffprobe"_s);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->run({u"-version"_s}, {}).exitStatus, 0);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(ResidentProgram, IsPassedOverWhereItWouldNotHaveTheLimitsOfTheTest)
{
    ASSERT_NE(resident(u"ffprobe"_s), nullptr);
    const FileSizeLimit limit(1000);
    EXPECT_EQ(resident(u"ffprobe"_s), nullptr);
}

TEST(ResidentProgram, IsPassedOverWhereThereIsNoProgram)
{
    EXPECT_EQ(ResidentProgram::find(TestFolder().path(u"missing"_s)), nullptr);
}

} // namespace nurv::test
