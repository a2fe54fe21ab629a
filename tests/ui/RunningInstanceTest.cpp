// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RunningInstance.h"

#include "support/WaitUntil.h"

#include <QProcess>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// A session bus of the test's own.
class RunningInstanceTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_bus.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        ASSERT_TRUE(m_bus.waitForStarted());
        ASSERT_TRUE(waitUntil([this] { return m_bus.canReadLine(); }));
        m_address = QString::fromUtf8(m_bus.readLine()).trimmed();
    }
    void TearDown() override
    {
        for (const QString &name : {u"first"_s, u"second"_s})
            QDBusConnection::disconnectFromBus(name);
        m_bus.terminate();
        m_bus.waitForFinished();
    }
    QDBusConnection connection(const QString &name) const { return QDBusConnection::connectToBus(m_address, name); }

private:
    QProcess m_bus;
    QString m_address;
};

/// Runs a blocking call while this thread answers it.
bool handOverFromElsewhere(RunningInstance &instance, const QStringList &uris, const QString &page = {})
{
    std::atomic<bool> isDone = false;
    bool accepted = false;
    std::thread caller([&] {
        accepted = instance.handOver(uris, page);
        isDone = true;
    });
    EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
    caller.join();
    return accepted;
}

} // namespace

TEST_F(RunningInstanceTest, ASecondOneHandsItsFilesToTheFirst)
{
    RunningInstance first(connection(u"first"_s));
    RunningInstance second(connection(u"second"_s));
    ASSERT_EQ(first.claim(), RunningInstance::Role::First);
    ASSERT_EQ(second.claim(), RunningInstance::Role::Second);
    QSignalSpy opened(&first, &RunningInstance::openRequested);
    const QString odd = u"/music/50% off #1 – Ré.flac"_s;
    ASSERT_TRUE(handOverFromElsewhere(second, {uriOfArgument(odd.toUtf8()), uriOfArgument("/music/R\xe9")}));
    ASSERT_TRUE(waitUntil([&] { return opened.size() == 1; }));
    const auto files = opened.at(0).at(0).value<GivenFiles>();
    EXPECT_EQ(files.paths, QStringList{odd});
    EXPECT_EQ(files.refused, QStringList{u"/music/R\\xE9"_s});
}

TEST_F(RunningInstanceTest, ASecondOneHandsItsPageOverBeforeItsFiles)
{
    RunningInstance first(connection(u"first"_s));
    RunningInstance second(connection(u"second"_s));
    ASSERT_EQ(first.claim(), RunningInstance::Role::First);
    ASSERT_EQ(second.claim(), RunningInstance::Role::Second);
    QStringList events;
    QObject::connect(&first, &RunningInstance::pageRequested, [&events](const QString &page) { events.append(page); });
    QObject::connect(&first, &RunningInstance::openRequested, [&events](const GivenFiles &files) { events.append(files.paths); });
    QSignalSpy activated(&first, &RunningInstance::activationRequested);
    ASSERT_TRUE(handOverFromElsewhere(second, {u"file:///music/a.flac"_s}, u"fix-sbe"_s));
    EXPECT_EQ(events, (QStringList{u"fix-sbe"_s, u"/music/a.flac"_s}));
    ASSERT_TRUE(handOverFromElsewhere(second, {}, u"lossy"_s));
    EXPECT_EQ(events.last(), u"lossy"_s);
    EXPECT_EQ(activated.size(), 2);
}

TEST_F(RunningInstanceTest, ASecondOneWithoutFilesBringsTheFirstToTheFront)
{
    RunningInstance first(connection(u"first"_s));
    RunningInstance second(connection(u"second"_s));
    ASSERT_EQ(first.claim(), RunningInstance::Role::First);
    ASSERT_EQ(second.claim(), RunningInstance::Role::Second);
    QSignalSpy activated(&first, &RunningInstance::activationRequested);
    ASSERT_TRUE(handOverFromElsewhere(second, {}));
    EXPECT_TRUE(waitUntil([&] { return activated.size() == 1; }));
}

TEST(RunningInstance, StartsAloneWithoutABus)
{
    RunningInstance instance(QDBusConnection::connectToBus(u"unix:path=/nowhere/at/all"_s, u"none"_s));
    EXPECT_EQ(instance.claim(), RunningInstance::Role::Unknown);
}

} // namespace nurv::test
