// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowFixture.h"

#include "app/SettingsTable.h"
#include "base/WorkerThreads.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace nurv::test {

WindowFixture::~WindowFixture()
{
    EXPECT_TRUE(waitUntil([] { return workerThreads::runningCount() == 0; }));
    // The next test begins with what a new user has.
    for (const Setting &setting : settingsTable(controller.tools()))
        SettingsStore::instance().remove(setting.key);
}

void WindowFixture::show()
{
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

bool dropOn(QWidget *widget, const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    const QPoint place = widget->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &enter);
    if (!enter.isAccepted())
        return false;
    QDragMoveEvent move(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
    QDropEvent drop(QPointF(place), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    return drop.isAccepted();
}

} // namespace nurv::test
