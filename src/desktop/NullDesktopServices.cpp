// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/NullDesktopServices.h"

namespace nurv {

void NullDesktopServices::setBadge(int /*count*/) {}

void NullDesktopServices::setProgress(std::optional<double> /*share*/) {}

bool NullDesktopServices::openFolder(const QString & /*path*/)
{
    return false;
}

bool NullDesktopServices::hasNotificationService()
{
    return false;
}

void NullDesktopServices::deliverNotification(const QString & /*title*/, const QString & /*body*/) {}

void NullDesktopServices::requestAttention() {}

std::optional<std::uint32_t> NullDesktopServices::createSleepAssertion(const QString & /*reason*/)
{
    return std::nullopt;
}

void NullDesktopServices::releaseSleepAssertion(std::uint32_t /*identifier*/) {}

} // namespace nurv
