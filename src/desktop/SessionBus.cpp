// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/SessionBus.h"

#include <QFileInfo>
#include <QString>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

QDBusConnection sessionBus()
{
    // Without an address the library would start a bus of its own, where nobody
    // listens, and wait for it.
    const QString userBus = u"/run/user/%1/bus"_s.arg(::getuid());
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") && !QFileInfo::exists(userBus))
        return QDBusConnection(u"no session bus"_s);
    return QDBusConnection::sessionBus();
}

} // namespace nurv
