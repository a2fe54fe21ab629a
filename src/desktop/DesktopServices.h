// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace nurv {

/// What the desktop does for the application outside its windows. Every operation
/// is a request: on a desktop that cannot fulfil it, nothing happens. Used on the
/// GUI thread.
class DesktopServices {
public:
    virtual ~DesktopServices() = default;

    /// Shows `count` on the application's icon; 0 shows none.
    virtual void setBadge(int count) = 0;
    /// Shows on the application's icon how far its work is, from 0 to 1; nothing shows none.
    virtual void setProgress(std::optional<double> share) = 0;
    /// Shows the folder in the file manager. False when there is nobody to ask.
    [[nodiscard]] virtual bool openFolder(const QString &path) = 0;
    /// Whether the desktop shows notifications at all.
    [[nodiscard]] virtual bool hasNotificationService() = 0;
    virtual void deliverNotification(const QString &title, const QString &body) = 0;
    /// Asks once, without insisting, for the user's attention.
    virtual void requestAttention() = 0;
    /// Keeps the display and the machine awake until the identifier is released or
    /// the process ends; nothing when that is not possible.
    virtual std::optional<std::uint32_t> createSleepAssertion(const QString &reason) = 0;
    virtual void releaseSleepAssertion(std::uint32_t identifier) = 0;
};

} // namespace nurv
