// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdint>

namespace nurv {

/// A number that stays the same for one login session: the kernel's audit session
/// id of this process, or the user id where the kernel has set none.
/// `auditFile` is where the kernel shows the former.
[[nodiscard]] std::uint32_t
sessionIdentifier(const QString &auditFile = QStringLiteral("/proc/self/sessionid"));

} // namespace nurv
