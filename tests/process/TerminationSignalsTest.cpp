// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/TerminationSignals.h"

#include "base/Log.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>

namespace nurv::test {

namespace {

/// The signals as the event loop gets them.
struct Received {
    Received()
    {
        QObject::connect(&signalsToEnd, &TerminationSignals::interrupted, [this] { ++interrupted; });
        QObject::connect(&signalsToEnd, &TerminationSignals::terminated, [this] { ++terminated; });
    }

    [[nodiscard]] bool isAnnounced() const
    {
        pollfd waiting{signalsToEnd.descriptor(), POLLIN, 0};
        return ::poll(&waiting, 1, 0) == 0;
    }

    TerminationSignals signalsToEnd;
    int interrupted = 0;
    int terminated = 0;
};

void (*handlerOf(int number))(int)
{
    struct sigaction present = {};
    EXPECT_EQ(::sigaction(number, nullptr, &present), 0);
    return present.sa_handler;
}

} // namespace

TEST(TerminationSignals, TurnCtrlCIntoAnEvent)
{
    Received received;
    ASSERT_EQ(::raise(SIGINT), 0);
    EXPECT_EQ(received.interrupted, 0);
    EXPECT_FALSE(received.isAnnounced());
    EXPECT_TRUE(waitUntil([&] { return received.interrupted == 1; }));
    EXPECT_TRUE(received.isAnnounced());
    EXPECT_EQ(received.terminated, 0);
}

TEST(TerminationSignals, TurnTheEndOfTheSessionIntoAnEvent)
{
    for (const int number : {SIGTERM, SIGHUP}) {
        Received received;
        ASSERT_EQ(::raise(number), 0);
        EXPECT_EQ(received.terminated, 0);
        EXPECT_TRUE(waitUntil([&] { return received.terminated == 1; })) << number;
        EXPECT_EQ(received.interrupted, 0);
    }
}

TEST(TerminationSignals, DisturbNobodyWhenMoreComeThanThePipeHolds)
{
    Received received;
    constexpr int kMoreThanAPipeHolds = 70'000;
    errno = EDOM;
    for (int i = 0; i < kMoreThanAPipeHolds; ++i)
        ::raise(SIGTERM);
    EXPECT_EQ(errno, EDOM);
    EXPECT_TRUE(waitUntil([&] { return received.isAnnounced(); }));
    EXPECT_GT(received.terminated, 0);
    EXPECT_LT(received.terminated, kMoreThanAPipeHolds);
}

TEST(TerminationSignals, LeaveASignalIgnoredThatTheProgramWasStartedToIgnore)
{
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGHUP, &ignored, &before), 0);
    {
        Received received;
        ASSERT_EQ(::raise(SIGHUP), 0);
        ASSERT_EQ(::raise(SIGTERM), 0);
        EXPECT_TRUE(waitUntil([&] { return received.isAnnounced(); }));
        EXPECT_EQ(received.terminated, 1);
        EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    }
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    ASSERT_EQ(::sigaction(SIGHUP, &before, nullptr), 0);
}

TEST(TerminationSignals, EndTheProcessAsEverWithoutAPipe)
{
    // A sanitizer that meets the log's stream for the first time takes a pipe to look at it.
    qCWarning(processLog).noquote() << "about to take all descriptors away";
    rlimit former = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    {
        const TerminationSignals signalsToEnd;
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &former), 0);
        EXPECT_EQ(signalsToEnd.descriptor(), -1);
        EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL);
    }
    EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL);
}

} // namespace nurv::test
