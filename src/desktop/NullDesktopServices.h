// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/DesktopServices.h"

namespace nurv {

/// A desktop that does nothing: for the command line.
class NullDesktopServices final : public DesktopServices {
public:
    void setBadge(int count) override;
    void setProgress(std::optional<double> share) override;
    [[nodiscard]] bool openFolder(const QString &path) override;
    [[nodiscard]] bool hasNotificationService() override;
    void deliverNotification(const QString &title, const QString &body) override;
    void requestAttention() override;
    std::optional<std::uint32_t> createSleepAssertion(const QString &reason) override;
    void releaseSleepAssertion(std::uint32_t identifier) override;
};

} // namespace nurv
