// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/RunningPrograms.h"

#include "files/FileDescriptor.h"
#include "process/ChildProcess.h"
#include "process/ProcessEnvironment.h"
#include "process/ProcessMark.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv {

namespace {

struct stat statusOf(const QString &path)
{
    struct stat facts = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
    return facts;
}

ChildCommand hanging()
{
    return {.launchPath = test::fakeProgramPath(),
            .arguments = {u"hang"_s},
            .environment = processEnvironment(),
            .workingDirectory = {}};
}

} // namespace

TEST(RunningPrograms, KnowsWhatIsOpenAndHow)
{
    const test::TestFolder folder;
    const QString read = folder.write(u"read"_s, "x");
    const QString written = folder.write(u"written"_s, "x");
    const QString idle = folder.write(u"idle"_s, "x");
    const FileDescriptor reader(::open(QFile::encodeName(read).constData(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor writer(::open(QFile::encodeName(written).constData(), O_RDWR | O_CLOEXEC));
    const RunningPrograms programs = RunningPrograms::now();
    EXPECT_TRUE(programs.isOpen(statusOf(read)));
    EXPECT_FALSE(programs.isOpenForWriting(statusOf(read)));
    EXPECT_TRUE(programs.isOpen(statusOf(written)));
    EXPECT_TRUE(programs.isOpenForWriting(statusOf(written)));
    EXPECT_FALSE(programs.isOpen(statusOf(idle)));
}

TEST(RunningPrograms, KnowsTheChildrenOfAProcess)
{
    ChildProcess child;
    ASSERT_FALSE(child.start(hanging()));
    // The kernel shows the environment a moment after the start.
    EXPECT_TRUE(test::waitUntil([] { return RunningPrograms::now().startedBy(processMark()).size() == 1; }));
    EXPECT_TRUE(RunningPrograms::now().startedBy(QByteArray(32, '0')).isEmpty());
}

TEST(RunningPrograms, KnowsWhereProgramsMayWork)
{
    const test::TestFolder folder;
    ChildCommand named = hanging();
    named.arguments = {u"log="_s + folder.path(u"named/log"_s), u"hang"_s};
    folder.makeFolder(u"named"_s);
    ChildCommand inside = hanging();
    inside.workingDirectory = folder.makeFolder(u"inside"_s);
    folder.makeFolder(u"idle"_s);
    ChildProcess first;
    ChildProcess second;
    ASSERT_FALSE(first.start(named));
    ASSERT_FALSE(second.start(inside));
    EXPECT_TRUE(test::waitUntil([] { return RunningPrograms::now().startedBy(processMark()).size() == 2; }));
    const RunningPrograms programs = RunningPrograms::now();
    EXPECT_TRUE(programs.mayWorkIn(QFile::encodeName(folder.path(u"named"_s))));
    EXPECT_TRUE(programs.mayWorkIn(QFile::encodeName(folder.path(u"inside"_s))));
    EXPECT_FALSE(programs.mayWorkIn(QFile::encodeName(folder.path(u"idle"_s))));
}

TEST(RunningPrograms, NeverEndsTheChildrenOfThisProcess)
{
    ChildProcess child;
    ASSERT_FALSE(child.start(hanging()));
    EXPECT_FALSE(RunningPrograms::end(processMark(), 10ms));
    EXPECT_FALSE(RunningPrograms::end({}, 10ms));
    EXPECT_TRUE(child.isRunning());
    EXPECT_TRUE(test::waitUntil([] { return RunningPrograms::now().startedBy(processMark()).size() == 1; }));
}

} // namespace nurv
