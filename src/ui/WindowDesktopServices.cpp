// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowDesktopServices.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>

#include <chrono>

namespace nurv {

namespace {

constexpr std::chrono::milliseconds kBadgeInterval{150};

} // namespace

WindowDesktopServices::WindowDesktopServices()
{
    m_badgeTimer.setSingleShot(true);
    m_badgeTimer.setInterval(kBadgeInterval);
    QObject::connect(&m_badgeTimer, &QTimer::timeout, &m_badgeTimer, [this] { sendBadge(); });
}

void WindowDesktopServices::setBadge(int count)
{
    m_badge = count;
    if (!m_badgeTimer.isActive())
        m_badgeTimer.start();
}

void WindowDesktopServices::sendBadge()
{
    if (m_badge == m_sentBadge)
        return;
    m_sentBadge = m_badge;
    m_desktop.setBadge(m_badge);
}

void WindowDesktopServices::setProgress(std::optional<double> share)
{
    m_desktop.setProgress(share);
}

bool WindowDesktopServices::openFolder(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void WindowDesktopServices::deliverNotification(const QString &title, const QString &body)
{
    m_desktop.deliverNotification(title, body);
}

void WindowDesktopServices::requestAttention()
{
    if (m_window)
        QApplication::alert(m_window);
}

std::optional<std::uint32_t> WindowDesktopServices::createSleepAssertion(const QString &reason)
{
    return m_desktop.createSleepAssertion(reason);
}

void WindowDesktopServices::releaseSleepAssertion(std::uint32_t identifier)
{
    m_desktop.releaseSleepAssertion(identifier);
}

} // namespace nurv
