// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>

namespace nurv {

/// Object: the new limit of concurrent jobs, an int.
inline constexpr char16_t NURVMaxThreadsChangedNotification[] = u"NURVMaxThreadsChangedNotification";
/// Object: the track names, a string list. User information: "source" =
/// "CueSheetTagImporter" when they come from a cue sheet.
inline constexpr char16_t NURVTrackNamesEnteredNotification[] = u"NURVTrackNamesEnteredNotification";

/// Named notifications between subsystems that do not know each other.
/// May be used from any thread; a subscriber is called on its context's thread.
class NotificationCenter : public QObject {
    Q_OBJECT

public:
    using Callback = std::function<void(const QVariant &object, const QVariantMap &userInformation)>;

    explicit NotificationCenter(QObject *parent = nullptr);

    /// The centre of the application.
    static NotificationCenter &instance();

    /// Calls the subscribers of `name`: at once those on the calling thread,
    /// the others when their event loop comes to it.
    void post(const QString &name, const QVariant &object = {},
              const QVariantMap &userInformation = {});

    /// Calls `callback` for every notification of `name` until `context` is gone
    /// or the returned connection is cut.
    QMetaObject::Connection subscribe(const QString &name, QObject *context, Callback callback);

Q_SIGNALS:
    void posted(const QString &name, const QVariant &object, const QVariantMap &userInformation);
};

} // namespace nurv
