// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/DBusDesktopServices.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace nurv {

/// The desktop's services for an application with a window: attention is asked
/// for by the window's entry in the task bar, and the badge, which may change
/// thousands of times a second, is sent on a few times a second.
class WindowDesktopServices final : public DesktopServices {
public:
    WindowDesktopServices();

    void setWindow(QWidget *window) { m_window = window; }

    void setBadge(int count) override;
    void setProgress(std::optional<double> share) override;
    [[nodiscard]] bool openFolder(const QString &path) override;
    [[nodiscard]] bool hasNotificationService() override { return m_desktop.hasNotificationService(); }
    void deliverNotification(const QString &title, const QString &body) override;
    void requestAttention() override;
    std::optional<std::uint32_t> createSleepAssertion(const QString &reason) override;
    void releaseSleepAssertion(std::uint32_t identifier) override;

private:
    void sendBadge();

    DBusDesktopServices m_desktop;
    QPointer<QWidget> m_window;
    QTimer m_badgeTimer;
    int m_badge = 0;
    int m_sentBadge = 0;
};

} // namespace nurv
