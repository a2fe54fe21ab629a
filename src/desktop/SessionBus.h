// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>

namespace nurv {

/// The user's session bus; a connection that is not connected where there is none.
/// Needs an application object.
[[nodiscard]] QDBusConnection sessionBus();

} // namespace nurv
