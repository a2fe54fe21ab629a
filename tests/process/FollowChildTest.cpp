// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/ChildProcess.h"

#include "support/ProgramFolder.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <stdexcept>

#include <signal.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

ChildCommand fake(const QStringList &script)
{
    ChildCommand command{
        .launchPath = test::fakeProgramPath(), .arguments = script, .environment = {}, .workingDirectory = {}};
    command.environment.insert(u"PATH"_s, qEnvironmentVariable("PATH"));
    return command;
}

class FollowChild : public ::testing::Test {
protected:
    [[nodiscard]] ChildFollower collecting()
    {
        return {.take = [this](const QByteArray &bytes) {
                    chunks.append(bytes);
                    return true;
                },
                .isUnwanted = {}};
    }
    void expectNoneLeft() const
    {
        EXPECT_EQ(children::runningCount(), 0);
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was not reaped";
    }

    QByteArrayList chunks;
};

TEST_F(FollowChild, HandsOverWhatEachReadGave)
{
    const ChildResult result =
        followChild(fake({u"out=one"_s, u"until-read"_s, u"err=two"_s, u"until-read"_s, u"out=three"_s, u"exit=4"_s}),
                    collecting());
    EXPECT_EQ(chunks, (QByteArrayList{"one", "two", "three"}));
    ASSERT_TRUE(result.exit);
    EXPECT_EQ(result.exit->status, 4);
    EXPECT_FALSE(result.wasStopped);
    EXPECT_TRUE(result.output.isEmpty());
    expectNoneLeft();
}

TEST_F(FollowChild, LosesNothingOfAFlood)
{
    const ChildResult result = followChild(fake({u"flood=3000000"_s}), collecting());
    EXPECT_EQ(chunks.join(), QByteArray(3'000'000, 'x'));
    EXPECT_TRUE(result.exit && result.exit->succeeded());
}

TEST_F(FollowChild, SaysWhyAProgramCannotBeStarted)
{
    const ChildResult result =
        followChild({.launchPath = u"/nowhere/tool"_s, .arguments = {}, .environment = {}, .workingDirectory = {}},
                    collecting());
    EXPECT_FALSE(result.exit);
    EXPECT_EQ(result.startError, u"No such file or directory");
    EXPECT_TRUE(chunks.isEmpty());
}

/// Follows it until it has said which process it has started, and returns whether that one comes to its end.
testing::AssertionResult endsWithItsGrandchild(const QStringList &script, int signal)
{
    QByteArray told;
    const auto take = [&](const QByteArray &bytes) {
        told += bytes;
        return !told.endsWith('\n');
    };
    const ChildResult result = followChild(fake(script), {.take = take, .isUnwanted = {}});
    if (!result.wasStopped || !result.exit || result.exit->signal != signal)
        return testing::AssertionFailure() << "it ended in another way";
    const int grandchild = told.trimmed().split(' ').last().toInt();
    QElapsedTimer timer;
    timer.start();
    while (grandchild > 0 && timer.elapsed() < 30'000) {
        QFile status(u"/proc/%1/stat"_s.arg(grandchild));
        if (!status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z "))
            return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << told.constData() << "is still there";
}

TEST_F(FollowChild, EndsTheWholeGroupOfAChildThatIsNotWantedAnyMore)
{
    EXPECT_TRUE(endsWithItsGrandchild({u"grandchild=60000"_s, u"hang"_s}, SIGTERM));
    expectNoneLeft();
}

TEST_F(FollowChild, KillsTheWholeGroupOfAChildThatIgnoresTermination)
{
    EXPECT_TRUE(endsWithItsGrandchild({u"ignore-term"_s, u"grandchild=60000"_s, u"hang"_s}, SIGKILL));
    expectNoneLeft();
}

TEST_F(FollowChild, KillsWhatIgnoresTermination)
{
    const ChildResult result = followChild(fake({u"ignore-term"_s, u"out=x"_s, u"hang"_s}),
                                           {.take = [](const QByteArray &) { return false; }, .isUnwanted = {}});
    EXPECT_TRUE(result.wasStopped);
    ASSERT_TRUE(result.exit);
    EXPECT_EQ(result.exit->signal, SIGKILL);
    expectNoneLeft();
}

TEST_F(FollowChild, AsksAlsoWhileTheChildIsSilent)
{
    for (const QStringList &script : {QStringList{u"hang"_s}, QStringList{u"out=x"_s, u"hang"_s}}) {
        int asked = 0;
        ChildFollower follower = collecting();
        follower.isUnwanted = [&] { return ++asked == 3; };
        const ChildResult result = followChild(fake(script), follower);
        EXPECT_TRUE(result.wasStopped);
        EXPECT_EQ(asked, 3);
        expectNoneLeft();
    }
}

TEST_F(FollowChild, AsksAlsoAfterTheChildHasClosedItsOutput)
{
    const test::TestFolder folder;
    const QString script = folder.write(u"close.sh"_s, "exec >&- 2>&-; exec sleep 60\n");
    ChildCommand command = fake({script});
    command.launchPath = u"/bin/sh"_s;
    int asked = 0;
    ChildFollower follower = collecting();
    follower.isUnwanted = [&] { return ++asked == 2; };
    const ChildResult result = followChild(command, follower);
    EXPECT_TRUE(result.wasStopped);
    expectNoneLeft();
}

TEST_F(FollowChild, GivesUpAPipeThatAGrandchildHolds)
{
    QElapsedTimer timer;
    timer.start();
    const ChildResult result = followChild(fake({u"out=mine"_s, u"grandchild=60000"_s}), collecting());
    EXPECT_LT(timer.elapsed(), 40'000);
    EXPECT_TRUE(result.exit && result.exit->succeeded());
    EXPECT_TRUE(chunks.join().startsWith("mine"));
    EXPECT_EQ(children::runningCount(), 0);
}

TEST_F(FollowChild, LeavesNothingBehindWhenItsCallerThrows)
{
    const qsizetype before = QDir(u"/proc/self/fd"_s).count();
    EXPECT_THROW(static_cast<void>(followChild(fake({u"out=x"_s, u"hang"_s}),
                                               {.take = [](const QByteArray &) -> bool {
                                                    throw std::runtime_error("planted");
                                                },
                                                .isUnwanted = {}})),
                 std::runtime_error);
    expectNoneLeft();
    EXPECT_EQ(QDir(u"/proc/self/fd"_s).count(), before);
}

} // namespace
} // namespace nurv
