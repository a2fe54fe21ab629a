// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/NotificationCenter.h"

#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QThread>

#include <thread>

using namespace Qt::StringLiterals;
using namespace nurv;

TEST(NotificationCenter, BringsObjectAndUserInformationToTheSubscribersOfTheName)
{
    NotificationCenter center;
    QObject context;
    QVariant limit;
    QVariantMap information;
    int others = 0;
    center.subscribe(QString::fromUtf16(NURVTrackNamesEnteredNotification), &context,
                     [&](const QVariant &object, const QVariantMap &userInformation) {
                         limit = object;
                         information = userInformation;
                     });
    center.subscribe(QString::fromUtf16(NURVMaxThreadsChangedNotification), &context,
                     [&](const QVariant &, const QVariantMap &) { ++others; });

    center.post(u"NURVTrackNamesEnteredNotification"_s, QStringList{u"One"_s, u"Two"_s},
                {{u"source"_s, u"CueSheetTagImporter"_s}});

    EXPECT_EQ(limit.toStringList(), (QStringList{u"One"_s, u"Two"_s}));
    EXPECT_EQ(information.value(u"source"_s).toString(), u"CueSheetTagImporter"_s);
    EXPECT_EQ(others, 0);
    center.post(u"NURVMaxThreadsChangedNotification"_s, 4);
    EXPECT_EQ(others, 1);
}

TEST(NotificationCenter, ForgetsASubscriberThatIsGoneOrCut)
{
    NotificationCenter center;
    int calls = 0;
    const auto count = [&](const QVariant &, const QVariantMap &) { ++calls; };
    QObject staying;
    const QMetaObject::Connection connection = center.subscribe(u"a"_s, &staying, count);
    {
        QObject leaving;
        center.subscribe(u"a"_s, &leaving, count);
        center.post(u"a"_s);
        EXPECT_EQ(calls, 2);
    }
    center.post(u"a"_s);
    EXPECT_EQ(calls, 3);
    QObject::disconnect(connection);
    center.post(u"a"_s);
    EXPECT_EQ(calls, 3);
}

TEST(NotificationCenter, CallsASubscriberOnTheThreadOfItsContext)
{
    QObject context;
    QThread *calledOn = nullptr;
    NotificationCenter::instance().subscribe(
        u"b"_s, &context, [&](const QVariant &, const QVariantMap &) { calledOn = QThread::currentThread(); });
    std::thread([] { NotificationCenter::instance().post(u"b"_s); }).join();
    EXPECT_EQ(calledOn, nullptr);
    EXPECT_TRUE(test::waitUntil([&] { return calledOn != nullptr; }));
    EXPECT_EQ(calledOn, QThread::currentThread());
}
