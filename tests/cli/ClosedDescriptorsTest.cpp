// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "process/StandardDescriptors.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(ClosedDescriptors, TakeNoTextIntoTheOutput)
{
    for (const QString &closing : {u"<&-"_s, u">&-"_s, u"2>&-"_s, u"<&- >&-"_s, u">&- 2>&-"_s, u"<&- >&- 2>&-"_s}) {
        SCOPED_TRACE(qPrintable(closing));
        const TestFolder folder;
        const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
        folder.write(u"bad.wav"_s, "this is no sound at all");
        for (const QString &format : {u"flac"_s, u"m4a"_s}) {
            const ProgramResult result = runProgram(
                u"bash"_s,
                {u"-c"_s,
                 u"\"$0\" encode --json --verbose --format %1 --beside-source \"$1\" %2"_s.arg(format, closing),
                 nurvPath(), folder.path()});
            EXPECT_EQ(result.exitStatus, 1);
            EXPECT_TRUE(sameSound(wav, folder.path(u"a."_s + format)));
            folder.remove(u"a."_s + format);
        }
        EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"bad.wav"_s}));
        EXPECT_EQ(folder.read(u"bad.wav"_s), "this is no sound at all");
    }
}

TEST(ClosedDescriptors, LoseNoResultWithoutAWord)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"a.wav"_s), {.seconds = 0.1});
    for (const QString &command : {u"shntool len \"$1\""_s, u"shntool info --json \"$1\""_s, u"settings"_s, u"--version"_s}) {
        const ProgramResult result =
            runProgram(u"bash"_s, {u"-c"_s, u"\"$0\" %1 >&-"_s.arg(command), nurvPath(), wav});
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(command);
        EXPECT_TRUE(result.errors.contains("standard output cannot be written: Bad file descriptor"))
            << qPrintable(command) << result.errors.constData();
    }
}

TEST(ClosedDescriptors, AreOpenedAndTheOpenOnesStayAsTheyAre)
{
    // In a child of its own: the test program needs its descriptors.
    for (const int closed : {0, 1, 2}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const int kept = closed == 0 ? 1 : 0;
            struct stat before {};
            struct stat after {};
            struct stat null {};
            ::close(closed);
            const bool isRight = ::fstat(kept, &before) == 0 && nurv::openStandardDescriptors()
                                 && ::fstat(kept, &after) == 0 && before.st_ino == after.st_ino
                                 && before.st_dev == after.st_dev && ::fstat(closed, &after) == 0
                                 && ::stat("/dev/null", &null) == 0 && after.st_rdev == null.st_rdev;
            ::_exit(isRight ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << closed;
    }
}
