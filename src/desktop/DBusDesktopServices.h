// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/DesktopServices.h"
#include "desktop/SessionBus.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QVariantMap>

namespace nurv {

/// The desktop behind the session bus: org.freedesktop.Notifications,
/// com.canonical.Unity.LauncherEntry and org.freedesktop.ScreenSaver.
///
/// Without a bus or a service nothing happens, and nothing is said about it. Only
/// `createSleepAssertion` and `hasNotificationService` wait for an answer, for at
/// most half a second.
class DBusDesktopServices final : public DesktopServices {
public:
    /// `bus` is the session bus outside tests. Needs an application object.
    explicit DBusDesktopServices(const QDBusConnection &bus = sessionBus());

    void setBadge(int count) override;
    void setProgress(std::optional<double> share) override;
    /// Not over the bus: false.
    [[nodiscard]] bool openFolder(const QString &path) override;
    [[nodiscard]] bool hasNotificationService() override;
    void deliverNotification(const QString &title, const QString &body) override;
    void requestAttention() override;
    std::optional<std::uint32_t> createSleepAssertion(const QString &reason) override;
    void releaseSleepAssertion(std::uint32_t identifier) override;

private:
    void updateLauncherEntry(const QVariantMap &properties);

    QDBusConnection m_bus;
    /// Not asked before: a service that does not answer, or is not there, is left
    /// alone for a while.
    QDeadlineTimer m_screenSaverPause{0};
};

} // namespace nurv
