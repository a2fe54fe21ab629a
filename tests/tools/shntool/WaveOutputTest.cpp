// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/PrivateFolder.h"
#include "shntool/ProgramWaveOutput.h"

#include "support/SystemCallRecorder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include <signal.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv::test {
namespace {

class WaveOutputTest : public ::testing::Test {
protected:
    [[nodiscard]] std::string name() const { return folder.path(u"a.wav"_s).toStdString(); }
    /// An output whose encoder keeps what it gets.
    [[nodiscard]] ProgramWaveOutput output() const
    {
        return ProgramWaveOutput(name(), [](const std::string &file) {
            return std::vector<std::string>{"/bin/sh", "-c", "cat >\"$0\"", file};
        });
    }
    [[nodiscard]] static bool fill(ProgramWaveOutput &output)
    {
        static constexpr std::array<uint8_t, 3> kBytes{'n', 'e', 'w'};
        return output.write(kBytes) && output.complete();
    }

    TestFolder folder;
};

TEST_F(WaveOutputTest, IsOnTheDiskBeforeItReplacesAFile)
{
    folder.write(u"a.wav"_s, "former");
    const SystemCallRecorder calls;
    ProgramWaveOutput made = output();
    ASSERT_TRUE(fill(made) && made.commit());
    EXPECT_EQ(folder.read(u"a.wav"_s), "new");
    const qsizetype flushed = calls.indexOf(u"fsync "_s + folder.path());
    ASSERT_GE(flushed, 0) << qPrintable(calls.calls().join(u'\n'));
    EXPECT_TRUE(calls.calls()[flushed].endsWith(u"/a.wav"_s));
    EXPECT_LT(flushed, calls.indexOf(u"rename "_s));
}

TEST_F(WaveOutputTest, IsIncompleteWhenItCannotBeFlushed)
{
    folder.write(u"a.wav"_s, "former");
    SystemCallRecorder calls;
    calls.fail(u"fsync "_s, EIO);
    ProgramWaveOutput made = output();
    EXPECT_FALSE(fill(made));
    EXPECT_NE(made.complaint(), "");
    EXPECT_EQ(folder.read(u"a.wav"_s), "former");
}

TEST_F(WaveOutputTest, MayLoseTheByteBehindTheSoundToAnEncoderThatIsThrough)
{
    constexpr std::size_t kSound = 5000;
    const std::vector<uint8_t> sound(kSound, 's');
    const std::string marker = folder.path(u"through"_s).toStdString();
    // As the program does.
    const auto former = ::signal(SIGPIPE, SIG_IGN);
    for (const std::size_t behind : {std::size_t{1}, std::size_t{2}}) {
        QFile::remove(folder.path(u"through"_s));
        // It closes its input once it has the sound, and says so.
        ProgramWaveOutput made(name(), [&marker](const std::string &file) {
            return std::vector<std::string>{"/bin/sh", "-c", "head -c 5000 >\"$0\"; exec <&-; : >\"$1\"", file, marker};
        });
        ASSERT_TRUE(made.write(sound));
        ASSERT_TRUE(waitUntil([this] { return folder.exists(u"through"_s); }));
        const std::vector<uint8_t> rest(behind, 0);
        EXPECT_TRUE(made.write(rest)) << "it waits for more";
        EXPECT_EQ(made.complete(), behind == 1);
    }
    ::signal(SIGPIPE, former);
}

TEST_F(WaveOutputTest, LeavesAFileThatCameWhileItWasMade)
{
    for (const bool knowsFlags : {true, false}) {
        ProgramWaveOutput made = output();
        ASSERT_TRUE(fill(made));
        folder.write(u"a.wav"_s, "somebody's");
        {
            SystemCallRecorder calls;
            if (!knowsFlags)
                calls.forgetRenameFlags();
            EXPECT_FALSE(made.commit());
        }
        EXPECT_EQ(folder.read(u"a.wav"_s), "somebody's");
        folder.remove(u"a.wav"_s);
    }
}

TEST_F(WaveOutputTest, TakesAFreeNameWhereTheFileSystemKnowsNoFlags)
{
    ProgramWaveOutput made = output();
    ASSERT_TRUE(fill(made));
    SystemCallRecorder calls;
    calls.forgetRenameFlags();
    EXPECT_TRUE(made.commit());
    EXPECT_EQ(folder.read(u"a.wav"_s), "new");
}

TEST_F(WaveOutputTest, IsMadeInAFolderThatNoOtherRunRemoves)
{
    const PrivateFolder mine(name());
    PrivateFolder::sweepBeside(name());
    struct stat facts = {};
    EXPECT_EQ(::stat(mine.path().c_str(), &facts), 0);
}

TEST_F(WaveOutputTest, SweepsOnlyWhatARunHasLeft)
{
    std::string left;
    {
        const PrivateFolder folderOfARun(name());
        left = folderOfARun.path();
    }
    ASSERT_EQ(::mkdir(left.c_str(), 0755), 0);
    PrivateFolder::sweepBeside(name());
    struct stat facts = {};
    EXPECT_EQ(::stat(left.c_str(), &facts), 0) << "others may read it: no run makes such";
    ASSERT_EQ(::chmod(left.c_str(), 0700), 0);
    PrivateFolder::sweepBeside(name());
    EXPECT_NE(::stat(left.c_str(), &facts), 0);
}

} // namespace
} // namespace nurv::test
