// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DBusDesktopServices.h"

#include <QDBusMessage>
#include <QDBusReply>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr int kAnswerTimeoutMs = 500;
constexpr int kNotificationShownMs = -1; // as long as the desktop thinks fit
constexpr int kScreenSaverPauseMs = 60'000;
constexpr uchar kNormalUrgency = 1;

const QString kApplicationName = u"Nurv Audio Workbench"_s;
const QString kNotificationService = u"org.freedesktop.Notifications"_s;
const QString kDesktopFile = u"org.nurvaudio.Workbench"_s;

QDBusMessage screenSaverCall(const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.freedesktop.ScreenSaver"_s,
                                          u"/org/freedesktop/ScreenSaver"_s,
                                          u"org.freedesktop.ScreenSaver"_s, method);
}

} // namespace

DBusDesktopServices::DBusDesktopServices(const QDBusConnection &bus) : m_bus(bus) {}

void DBusDesktopServices::setBadge(int count)
{
    updateLauncherEntry({{u"count"_s, QVariant::fromValue<qlonglong>(count)},
                         {u"count-visible"_s, count != 0},
                         {u"urgent"_s, false}});
}

void DBusDesktopServices::setProgress(std::optional<double> share)
{
    updateLauncherEntry(
        {{u"progress"_s, std::clamp(share.value_or(0.0), 0.0, 1.0)}, {u"progress-visible"_s, share.has_value()}});
}

bool DBusDesktopServices::openFolder(const QString & /*path*/)
{
    return false;
}

void DBusDesktopServices::requestAttention()
{
    updateLauncherEntry({{u"urgent"_s, true}});
}

void DBusDesktopServices::updateLauncherEntry(const QVariantMap &properties)
{
    if (!m_bus.isConnected())
        return;
    QDBusMessage update = QDBusMessage::createSignal(u"/org/nurvaudio/Workbench"_s,
                                                     u"com.canonical.Unity.LauncherEntry"_s,
                                                     u"Update"_s);
    update << u"application://"_s + kDesktopFile + u".desktop"_s << properties;
    m_bus.send(update);
}

bool DBusDesktopServices::hasNotificationService()
{
    if (!m_bus.isConnected())
        return false;
    // The bus itself answers both at once; the limit is for a bus that hangs.
    const auto askBus = [this](const QString &method, const QVariantList &arguments) {
        QDBusMessage question = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, method);
        question.setArguments(arguments);
        return m_bus.call(question, QDBus::Block, kAnswerTimeoutMs);
    };
    const QDBusReply<bool> isRunning = askBus(u"NameHasOwner"_s, {kNotificationService});
    if (isRunning.isValid() && isRunning.value())
        return true;
    const QDBusReply<QStringList> startable = askBus(u"ListActivatableNames"_s, {});
    return startable.isValid() && startable.value().contains(kNotificationService);
}

void DBusDesktopServices::deliverNotification(const QString &title, const QString &body)
{
    if (!m_bus.isConnected())
        return;
    QDBusMessage notify = QDBusMessage::createMethodCall(kNotificationService,
                                                         u"/org/freedesktop/Notifications"_s,
                                                         kNotificationService,
                                                         u"Notify"_s);
    const QVariantMap hints{{u"desktop-entry"_s, kDesktopFile},
                            {u"urgency"_s, QVariant::fromValue(kNormalUrgency)}};
    // The body is markup to the desktop; names of files are not.
    notify << kApplicationName << 0U << kDesktopFile << title << body.toHtmlEscaped()
           << QStringList() << hints << kNotificationShownMs;
    m_bus.asyncCall(notify, kAnswerTimeoutMs);
}

std::optional<std::uint32_t> DBusDesktopServices::createSleepAssertion(const QString &reason)
{
    if (!m_bus.isConnected() || !m_screenSaverPause.hasExpired())
        return std::nullopt;
    QDBusMessage inhibit = screenSaverCall(u"Inhibit"_s);
    // Waiting for a service to be started could take longer than the answer.
    inhibit.setAutoStartService(false);
    inhibit << kApplicationName << reason;
    const QDBusReply<uint> identifier = m_bus.call(inhibit, QDBus::Block, kAnswerTimeoutMs);
    if (identifier.isValid())
        return identifier.value();
    // Asked again for every job that is added, a service that hangs or is missing
    // would hold up the window.
    m_screenSaverPause.setRemainingTime(kScreenSaverPauseMs);
    return std::nullopt;
}

void DBusDesktopServices::releaseSleepAssertion(std::uint32_t identifier)
{
    if (!m_bus.isConnected())
        return;
    QDBusMessage release = screenSaverCall(u"UnInhibit"_s);
    release.setAutoStartService(false);
    release << identifier;
    m_bus.asyncCall(release, kAnswerTimeoutMs);
}

} // namespace nurv
