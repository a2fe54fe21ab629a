// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DBusDesktopServices.h"
#include "desktop/NullDesktopServices.h"
#include "desktop/SessionBus.h"

#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace nurv;

namespace {

// What a launcher sees of the application's entry.
class Launcher : public QObject {
    Q_OBJECT

public:
    QString application;
    QVariantMap properties;
    int updates = 0;

public Q_SLOTS:
    void update(const QString &uri, const QVariantMap &values)
    {
        application = uri;
        properties = values;
        ++updates;
    }
};

// A bus of its own with stand-ins for the services of a desktop.
class DesktopServicesOnABus : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty())
            GTEST_SKIP() << "dbus-daemon is not installed";
        m_daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        ASSERT_TRUE(m_daemon.waitForReadyRead(10000));
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }

    void TearDown() override
    {
        QDBusConnection::disconnectFromBus(u"test services"_s);
        QDBusConnection::disconnectFromBus(u"test observer"_s);
        for (QProcess *process : {&m_mock, &m_daemon}) {
            if (process->state() == QProcess::NotRunning)
                continue;
            process->terminate();
            process->waitForFinished(5000);
        }
    }

    // Starts a stand-in and gives it a method; returns false when there is no dbusmock.
    [[nodiscard]] bool startMock(const QString &service, const QString &path)
    {
        QProcess probe;
        probe.start(u"/usr/bin/python3"_s, {u"-c"_s, u"import dbusmock"_s});
        if (!probe.waitForFinished(10000) || probe.exitCode() != 0)
            return false;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_address);
        m_mock.setProcessEnvironment(environment);
        m_mock.start(u"/usr/bin/python3"_s, {u"-m"_s, u"dbusmock"_s, u"--session"_s, u"-l"_s, m_folder.path(u"calls"_s),
                                             service, path, service});
        m_service = service;
        m_path = path;
        return test::waitUntil([&] { return observer().interface()->isServiceRegistered(service).value(); });
    }

    void addMethod(const QString &name, const QString &in, const QString &out, const QString &code)
    {
        QDBusMessage add =
            QDBusMessage::createMethodCall(m_service, m_path, u"org.freedesktop.DBus.Mock"_s, u"AddMethod"_s);
        add << m_service << name << in << out << code;
        ASSERT_NE(observer().call(add).type(), QDBusMessage::ErrorMessage);
    }

    [[nodiscard]] QDBusConnection observer() const
    {
        return QDBusConnection::connectToBus(m_address, u"test observer"_s);
    }

    [[nodiscard]] DBusDesktopServices services() const
    {
        return DBusDesktopServices(QDBusConnection::connectToBus(m_address, u"test services"_s));
    }

    // The calls that the stand-in has written down.
    [[nodiscard]] QString calls() const
    {
        return m_folder.exists(u"calls"_s) ? QString::fromUtf8(m_folder.read(u"calls"_s)) : QString();
    }

    test::TestFolder m_folder;
    QProcess m_daemon;
    QProcess m_mock;
    QString m_address;
    QString m_service;
    QString m_path;
};

} // namespace

TEST_F(DesktopServicesOnABus, NotificationsReachTheDesktop)
{
    if (!startMock(u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s))
        GTEST_SKIP() << "python3-dbusmock is not installed";
    addMethod(u"Notify"_s, u"susssasa{sv}i"_s, u"u"_s, u"ret = 1"_s);
    DBusDesktopServices desktop = services();
    EXPECT_TRUE(desktop.hasNotificationService());
    desktop.deliverNotification(u"Nurv task(s) completed"_s, u"a <b> & c"_s);
    ASSERT_TRUE(test::waitUntil([&] { return calls().contains(u"Notify"_s); }));
    EXPECT_TRUE(calls().contains(u"\"Nurv task(s) completed\""_s)) << calls().toStdString();
    EXPECT_TRUE(calls().contains(u"a &lt;b&gt; &amp; c"_s)) << calls().toStdString();
    EXPECT_TRUE(calls().contains(u"\"org.nurvaudio.Workbench\""_s)) << calls().toStdString();
}

TEST_F(DesktopServicesOnABus, SleepAssertionsAreTakenAndReleased)
{
    if (!startMock(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s))
        GTEST_SKIP() << "python3-dbusmock is not installed";
    addMethod(u"Inhibit"_s, u"ss"_s, u"u"_s, u"ret = 4242"_s);
    addMethod(u"UnInhibit"_s, u"u"_s, u""_s, u""_s);
    DBusDesktopServices desktop = services();
    EXPECT_EQ(desktop.createSleepAssertion(u"Nurv task running"_s), 4242U);
    EXPECT_TRUE(calls().contains(u"Inhibit \"Nurv Audio Workbench\" \"Nurv task running\""_s)) << calls().toStdString();
    desktop.releaseSleepAssertion(4242);
    EXPECT_TRUE(test::waitUntil([&] { return calls().contains(u"UnInhibit 4242"_s); })) << calls().toStdString();
}

TEST_F(DesktopServicesOnABus, AServiceThatDoesNotAnswerIsNotWaitedForLong)
{
    if (!startMock(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s))
        GTEST_SKIP() << "python3-dbusmock is not installed";
    addMethod(u"Inhibit"_s, u"ss"_s, u"u"_s, u"import time; time.sleep(60); ret = 1"_s);
    DBusDesktopServices desktop = services();
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(desktop.createSleepAssertion(u"x"_s), std::nullopt);
    EXPECT_LT(timer.elapsed(), 30'000);
    EXPECT_GE(timer.elapsed(), 300);
}

TEST_F(DesktopServicesOnABus, TheBadgeReachesTheLauncher)
{
    Launcher launcher;
    ASSERT_TRUE(observer().connect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s, &launcher,
                                   SLOT(update(QString, QVariantMap))));
    DBusDesktopServices desktop = services();
    desktop.setBadge(17);
    ASSERT_TRUE(test::waitUntil([&] { return launcher.updates == 1; }));
    EXPECT_EQ(launcher.application, u"application://org.nurvaudio.Workbench.desktop"_s);
    EXPECT_EQ(launcher.properties.value(u"count"_s).typeId(), QMetaType::LongLong);
    EXPECT_EQ(launcher.properties.value(u"count"_s).toLongLong(), 17);
    EXPECT_EQ(launcher.properties.value(u"count-visible"_s), QVariant(true));
    desktop.setBadge(0);
    ASSERT_TRUE(test::waitUntil([&] { return launcher.updates == 2; }));
    EXPECT_EQ(launcher.properties.value(u"count-visible"_s), QVariant(false));
    desktop.requestAttention();
    ASSERT_TRUE(test::waitUntil([&] { return launcher.updates == 3; }));
    EXPECT_EQ(launcher.properties.value(u"urgent"_s), QVariant(true));
    QDBusConnection(u"test observer"_s)
        .disconnect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s, &launcher,
                    SLOT(update(QString, QVariantMap)));
}

TEST_F(DesktopServicesOnABus, TheShareOfTheWorkReachesTheLauncher)
{
    Launcher launcher;
    ASSERT_TRUE(observer().connect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s, &launcher,
                                   SLOT(update(QString, QVariantMap))));
    DBusDesktopServices desktop = services();
    desktop.setProgress(0.25);
    ASSERT_TRUE(test::waitUntil([&] { return launcher.updates == 1; }));
    EXPECT_EQ(launcher.application, u"application://org.nurvaudio.Workbench.desktop"_s);
    EXPECT_EQ(launcher.properties.value(u"progress"_s).typeId(), QMetaType::Double);
    EXPECT_EQ(launcher.properties.value(u"progress"_s), QVariant(0.25));
    EXPECT_EQ(launcher.properties.value(u"progress-visible"_s), QVariant(true));
    EXPECT_FALSE(launcher.properties.contains(u"count"_s)) << "the badge stays as it is";
    desktop.setProgress(std::nullopt);
    ASSERT_TRUE(test::waitUntil([&] { return launcher.updates == 2; }));
    EXPECT_EQ(launcher.properties.value(u"progress-visible"_s), QVariant(false));
    QDBusConnection(u"test observer"_s)
        .disconnect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s, &launcher,
                    SLOT(update(QString, QVariantMap)));
}

TEST_F(DesktopServicesOnABus, NothingHappensWithoutTheServices)
{
    DBusDesktopServices desktop = services();
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(desktop.hasNotificationService());
    desktop.deliverNotification(u"title"_s, u"body"_s);
    desktop.requestAttention();
    EXPECT_EQ(desktop.createSleepAssertion(u"x"_s), std::nullopt);
    desktop.releaseSleepAssertion(1);
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST(DesktopServices, DoNothingWithoutABus)
{
    const QByteArray former = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    DBusDesktopServices desktop;
    former.isNull() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS") : qputenv("DBUS_SESSION_BUS_ADDRESS", former);
    QElapsedTimer timer;
    timer.start();
    desktop.setBadge(3);
    desktop.setProgress(0.5);
    EXPECT_FALSE(desktop.openFolder(u"/home"_s));
    EXPECT_FALSE(desktop.hasNotificationService());
    desktop.deliverNotification(u"title"_s, u"body"_s);
    desktop.requestAttention();
    EXPECT_EQ(desktop.createSleepAssertion(u"x"_s), std::nullopt);
    desktop.releaseSleepAssertion(1);
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST(SessionBus, IsNotEvenLookedForWithoutAnAddress)
{
    if (QFileInfo::exists(u"/run/user/%1/bus"_s.arg(::getuid())))
        GTEST_SKIP() << "the user has a bus that needs no address";
    const QByteArray former = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const QDBusConnection bus = sessionBus();
    if (!former.isNull())
        qputenv("DBUS_SESSION_BUS_ADDRESS", former);
    EXPECT_FALSE(bus.isConnected());
    // One that was looked for has a name, connected or not.
    EXPECT_EQ(bus.name(), QString());
}

TEST(DesktopServices, OfTheCommandLinePromiseNothing)
{
    NullDesktopServices desktop;
    EXPECT_FALSE(desktop.hasNotificationService());
    EXPECT_EQ(desktop.createSleepAssertion(u"x"_s), std::nullopt);
}

#include "DesktopServicesTest.moc"
