// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/SessionBus.h"
#include "ui/GivenFiles.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace nurv {

/// The place of the one running application on the session bus, where further
/// starts and the desktop hand over their files (org.freedesktop.Application).
class RunningInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Role {
        First,   ///< the name is ours
        Second,  ///< another one has the name
        Unknown, ///< there is no bus
    };

    explicit RunningInstance(const QDBusConnection &bus = sessionBus(), QObject *parent = nullptr);

    /// Takes the name, unless another one has it.
    [[nodiscard]] Role claim();
    /// Hands the files to the running application and brings it to the front, with that page if it is not empty.
    /// False when it does not answer. Blocks until it has, for a few seconds at most.
    [[nodiscard]] bool handOver(const QStringList &uris, const QString &page = {});

Q_SIGNALS:
    void activationRequested();
    /// The page of an action of the desktop file is wanted.
    void pageRequested(const QString &action);
    void openRequested(const GivenFiles &files);

public Q_SLOTS: // called over the bus
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &action, const QVariantList &parameter,
                                     const QVariantMap &platformData);

private:
    [[nodiscard]] bool call(const QString &method, const QVariantList &arguments);

    QDBusConnection m_bus;
};

} // namespace nurv
