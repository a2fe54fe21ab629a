// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/SessionIdentifier.h"

#include <QFile>

#include <limits>

#include <unistd.h>

namespace nurv {

namespace {

// What the kernel shows for a process outside any audited login.
constexpr std::uint32_t kUnset = std::numeric_limits<std::uint32_t>::max();

} // namespace

std::uint32_t sessionIdentifier(const QString &auditFile)
{
    QFile file(auditFile);
    if (file.open(QIODevice::ReadOnly)) {
        bool isNumber = false;
        const std::uint32_t session = file.read(16).trimmed().toUInt(&isNumber);
        if (isNumber && session != kUnset)
            return session;
    }
    return ::getuid();
}

} // namespace nurv
