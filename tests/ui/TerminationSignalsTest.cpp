// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TerminationSignals.h"

#include "support/WaitUntil.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <signal.h>

namespace nurv::test {

TEST(TerminationSignals, TurnsASignalIntoAnEvent)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        TerminationSignals signalsToEnd;
        QSignalSpy received(&signalsToEnd, &TerminationSignals::received);
        ASSERT_EQ(::raise(number), 0);
        EXPECT_TRUE(received.isEmpty());
        EXPECT_TRUE(waitUntil([&] { return received.size() == 1; })) << number;
    }
}

TEST(TerminationSignals, LeavesASignalIgnoredThatTheProgramWasStartedToIgnore)
{
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGHUP, &ignored, &before), 0);
    {
        TerminationSignals signalsToEnd;
        QSignalSpy received(&signalsToEnd, &TerminationSignals::received);
        ASSERT_EQ(::raise(SIGHUP), 0);
        ASSERT_EQ(::raise(SIGTERM), 0);
        EXPECT_TRUE(waitUntil([&] { return !received.isEmpty(); }));
        struct sigaction present = {};
        ASSERT_EQ(::sigaction(SIGHUP, nullptr, &present), 0);
        EXPECT_EQ(present.sa_handler, SIG_IGN);
    }
    struct sigaction present = {};
    ASSERT_EQ(::sigaction(SIGHUP, &before, &present), 0);
    EXPECT_EQ(present.sa_handler, SIG_IGN);
}

} // namespace nurv::test
