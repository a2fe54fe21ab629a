// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/WaitUntil.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>

namespace nurv::test {

bool waitUntil(const std::function<bool()> &predicate, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    // Its only work is to end the waiting in processEvents.
    QTimer wakeUp;
    wakeUp.start(std::chrono::milliseconds(5));
    while (!predicate()) {
        if (std::chrono::steady_clock::now() >= end) {
            return predicate();
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

void handleWaitingEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace nurv::test
