// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NotificationCenter.h"

#include <utility>

namespace nurv {

NotificationCenter::NotificationCenter(QObject *parent) : QObject(parent) {}

NotificationCenter &NotificationCenter::instance()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::post(const QString &name, const QVariant &object,
                              const QVariantMap &userInformation)
{
    Q_EMIT posted(name, object, userInformation);
}

QMetaObject::Connection NotificationCenter::subscribe(const QString &name, QObject *context,
                                                      Callback callback)
{
    return connect(this, &NotificationCenter::posted, context,
                   [name, call = std::move(callback)](const QString &posted, const QVariant &object,
                                                      const QVariantMap &userInformation) {
                       if (posted == name)
                           call(object, userInformation);
                   });
}

} // namespace nurv
