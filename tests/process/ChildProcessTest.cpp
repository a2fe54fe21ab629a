// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ChildProcess.h"

#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nurv {
namespace {

using test::waitUntil;

ChildCommand fake(const QStringList &script)
{
    ChildCommand command{.launchPath = test::fakeProgramPath(), .arguments = script, .environment = {}, .workingDirectory = {}};
    command.environment.insert(u"PATH"_s, qEnvironmentVariable("PATH"));
    return command;
}

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
}

bool hasChildren()
{
    return ::waitpid(-1, nullptr, WNOHANG) != -1;
}

// Whether a process that is not our child is gone, or waits only for its parent.
bool hasEnded(pid_t pid)
{
    if (::kill(pid, 0) != 0 && errno == ESRCH)
        return true;
    QFile status(u"/proc/%1/stat"_s.arg(pid));
    return status.open(QIODevice::ReadOnly) && status.readAll().contains(") Z ");
}

// The process that a program said it has started, which need not be alive any more.
pid_t grandchildIn(const QByteArray &output)
{
    const qsizetype at = output.indexOf("grandchild ");
    return at < 0 ? -1 : output.sliced(at).split('\n').first().split(' ').last().toInt();
}

struct Recorder {
    ChildProcess process;
    QByteArray output;
    int finishes = 0;

    Recorder()
    {
        QObject::connect(&process, &ChildProcess::outputRead, &process,
                         [this](const QByteArray &bytes) { output += bytes; });
        QObject::connect(&process, &ChildProcess::finished, &process, [this] { ++finishes; });
    }
    [[nodiscard]] bool runToEnd(const QStringList &script)
    {
        const auto failure = process.start(fake(script));
        EXPECT_EQ(failure, std::nullopt);
        return waitUntil([this] { return finishes > 0; });
    }
};

TEST(ChildProcess, DeliversBothStreamsAndTheExitStatus)
{
    Recorder child;
    ASSERT_TRUE(child.runToEnd({u"out=a"_s, u"err=b"_s, u"out=c"_s, u"exit=4"_s}));
    EXPECT_EQ(child.output, "abc");
    ASSERT_TRUE(child.process.exitState());
    EXPECT_EQ(child.process.exitState()->status, 4);
    EXPECT_EQ(child.process.exitState()->signal, 0);
    EXPECT_FALSE(child.process.exitState()->succeeded());
    EXPECT_FALSE(child.process.isRunning());
    EXPECT_EQ(child.finishes, 1);
}

TEST(ChildProcess, LeadsAProcessGroupAndInheritsNothing)
{
    const int leak = ::open("/dev/zero", O_RDONLY); // deliberately not close-on-exec
    Recorder child;
    ASSERT_TRUE(child.runToEnd({u"fds"_s, u"stdin"_s, u"ids"_s}));
    ::close(leak);
    EXPECT_TRUE(child.output.startsWith("fds: 0 1 2\nstdin: /dev/null\n")) << child.output.constData();
    const QList<QByteArray> ids = child.output.trimmed().split('\n').last().split(' ');
    ASSERT_EQ(ids.size(), 6);
    EXPECT_EQ(ids[1], ids[3]) << "process id and group";
}

TEST(ChildProcess, StartsWithDefaultSignals)
{
    ::signal(SIGPIPE, SIG_IGN);
    Recorder child;
    const bool ended = child.runToEnd({u"signal=13"_s});
    ::signal(SIGPIPE, SIG_DFL);
    ASSERT_TRUE(ended);
    EXPECT_EQ(child.process.exitState()->signal, SIGPIPE);
}

TEST(ChildProcess, SaysWhyAProgramCannotBeStarted)
{
    const test::TestFolder folder;
    const qsizetype before = openDescriptors();
    ChildProcess process;
    ChildCommand command = fake({});
    command.launchPath = folder.path(u"missing"_s);
    EXPECT_EQ(process.start(command), u"No such file or directory"_s);
    command.launchPath = folder.write(u"text"_s, "no program");
    EXPECT_EQ(process.start(command), u"Permission denied"_s);
    command = fake({QString(200000, u'x')});
    EXPECT_EQ(process.start(command), u"Argument list too long"_s);
    command = fake({});
    command.workingDirectory = folder.path(u"nowhere"_s);
    EXPECT_EQ(process.start(command), u"No such file or directory"_s);
    EXPECT_FALSE(process.isRunning());
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, ReapsAChildThatItsOwnerDrops)
{
    auto child = std::make_unique<Recorder>();
    ASSERT_EQ(child->process.start(fake({u"hang"_s})), std::nullopt);
    EXPECT_EQ(children::runningCount(), 1);
    child.reset();
    EXPECT_EQ(children::runningCount(), 0);
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, LeavesNeitherZombiesNorDescriptorsBehind)
{
    const qsizetype before = openDescriptors();
    for (int i = 0; i < 200; ++i) {
        Recorder child;
        ASSERT_TRUE(child.runToEnd({u"out=x"_s}));
    }
    test::handleWaitingEvents();
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(children::runningCount(), 0);
}

// In a process of its own: the signal's disposition is inherited at its start.
TEST(ChildProcess, KnowsHowAChildEndedAlthoughItsParentIgnoredSigchld)
{
    EXPECT_EXIT(
        {
            ::signal(SIGCHLD, SIG_IGN);
            const ChildResult result = runChild(fake({u"exit=3"_s}));
            // Or, when the system has reaped it before it could be watched, none.
            std::_Exit(result.exit && result.exit->succeeded() ? 1 : 42);
        },
        ::testing::ExitedWithCode(42), "");
}

TEST(RunChild, TakesNoChildThatTheSystemReapedForASuccess)
{
    EXPECT_EXIT(
        {
            static_cast<void>(runChild(fake({})));
            // Some library does, and from now on nobody learns how a child ended.
            ::signal(SIGCHLD, SIG_IGN);
            const ChildResult result = runChild(fake({u"out=x"_s, u"delay=300"_s}));
            std::_Exit(result.output == "x" && result.exit && !result.exit->succeeded() ? 42 : 1);
        },
        ::testing::ExitedWithCode(42), "");
}

TEST(ChildProcess, StartsFromAProcessWithoutStandardStreams)
{
    EXPECT_EXIT(
        {
            for (const int fd : {0, 1, 2})
                ::close(fd);
            const ChildResult result = runChild(fake({u"out=a"_s, u"err=b"_s, u"fds"_s}));
            std::_Exit(result.output == "abfds: 0 1 2\n" ? 42 : 1);
        },
        ::testing::ExitedWithCode(42), "");
}

TEST(RunChild, ReturnsOutputAndExit)
{
    const ChildResult result = runChild(fake({u"out=a"_s, u"err=b"_s, u"exit=2"_s}));
    EXPECT_EQ(result.output, "ab");
    ASSERT_TRUE(result.exit);
    EXPECT_EQ(result.exit->status, 2);
    EXPECT_EQ(result.startError, QString());
}

TEST(RunChild, SaysWhyAProgramCannotBeStarted)
{
    ChildCommand command = fake({});
    command.launchPath = u"/nowhere/flac"_s;
    const ChildResult result = runChild(command);
    EXPECT_FALSE(result.exit);
    EXPECT_EQ(result.startError, u"No such file or directory");
}

TEST(RunChild, GivesUpAPipeThatAGrandchildHolds)
{
    QElapsedTimer timer;
    timer.start();
    const ChildResult result = runChild(fake({u"grandchild=60000"_s, u"out=end"_s}));
    EXPECT_TRUE(result.output.endsWith("end"));
    EXPECT_LT(timer.elapsed(), 40'000);
    const int grandchild = result.output.split('\n').first().split(' ').last().toInt();
    ASSERT_GT(grandchild, 0);
    ::kill(grandchild, SIGKILL);
}

TEST(RunChild, KillsAProgramThatIsOverItsLimit)
{
    for (const QStringList &script : {QStringList{u"out=a"_s, u"hang"_s}, QStringList{u"ignore-term"_s, u"flood=100000000"_s},
                                      QStringList{u"grandchild=60000"_s, u"hang"_s}}) {
        const ChildResult result = runChild(fake(script), 100ms);
        ASSERT_TRUE(result.exit);
        EXPECT_EQ(result.exit->signal, SIGKILL);
    }
    EXPECT_FALSE(hasChildren());
    EXPECT_TRUE(runChild(fake({u"out=quick"_s}), 20s).exit->succeeded());
}

TEST(RunChild, KillsWhatAProgramOverItsLimitHasStarted)
{
    const ChildResult result = runChild(fake({u"grandchild=60000"_s, u"hang"_s}), 2s);
    const pid_t grandchild = grandchildIn(result.output);
    ASSERT_GT(grandchild, 0) << result.output.constData();
    EXPECT_TRUE(waitUntil([&] { return hasEnded(grandchild); }));
}

TEST(RunChild, RunsOnManyThreadsAtOnce)
{
    const qsizetype before = openDescriptors();
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&good] {
            for (int i = 0; i < 25; ++i) {
                if (runChild(fake({u"flood=100000"_s, u"fds"_s})).output.endsWith("xfds: 0 1 2\n"))
                    ++good;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(good, 100);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(Children, AreKilledWithAllTheyHaveStartedWhenTheyIgnoreTheEnd)
{
    Recorder child;
    ASSERT_EQ(child.process.start(fake({u"ignore-term"_s, u"grandchild=60000"_s, u"hang"_s})), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return child.output.endsWith('\n'); }));
    const pid_t grandchild = grandchildIn(child.output);
    ASSERT_GT(grandchild, 0) << child.output.constData();
    children::terminateAll(100ms, false);
    EXPECT_TRUE(waitUntil([&] { return child.finishes == 1; }));
    EXPECT_EQ(child.process.exitState()->signal, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return hasEnded(grandchild); }));
}

TEST(Children, AreAllTerminatedAndRefusedAtTheEnd)
{
    std::vector<std::unique_ptr<Recorder>> recorders;
    for (int i = 0; i < 5; ++i) {
        recorders.push_back(std::make_unique<Recorder>());
        ASSERT_EQ(recorders.back()->process.start(fake({u"ignore-term"_s, u"out=r"_s, u"hang"_s})), std::nullopt);
    }
    std::atomic<bool> hasReturned = false;
    std::thread worker([&] {
        (void)runChild(fake({u"hang"_s}));
        hasReturned = true;
    });
    ASSERT_TRUE(waitUntil([&] {
        return children::runningCount() == 6
            && std::all_of(recorders.begin(), recorders.end(), [](const auto &r) { return r->output == "r"; });
    }));
    children::terminateAll(300ms, true);
    ChildProcess refused;
    EXPECT_EQ(refused.start(fake({})), u"Operation canceled"_s);
    ASSERT_TRUE(waitUntil([&] {
        return hasReturned.load()
            && std::all_of(recorders.begin(), recorders.end(), [](const auto &r) { return r->finishes == 1; });
    }));
    worker.join();
    children::terminateAll(0ms, false);
    EXPECT_EQ(children::runningCount(), 0);
    EXPECT_FALSE(hasChildren());
    Recorder again;
    EXPECT_TRUE(again.runToEnd({u"out=x"_s}));
}

} // namespace
} // namespace nurv
