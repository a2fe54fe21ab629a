// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace nurv::test {

/// Does something with the modal dialog as soon as it has the keyboard. A dialog that never gets it, or stays open
/// afterwards, is closed after a while, and the test fails.
template<typename Dialog>
class WhenOpen {
public:
    explicit WhenOpen(std::function<void(Dialog &)> act)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, act = std::move(act)] {
            auto *const dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (dialog == nullptr || !dialog->isVisible() || QApplication::focusWidget() == nullptr)
                return;
            m_timer.stop();
            ++m_acts;
            act(*dialog);
        });
        QObject::connect(&m_watchdog, &QTimer::timeout, &m_watchdog, [] {
            QWidget *const open = QApplication::activeModalWidget();
            if (open == nullptr)
                return;
            ADD_FAILURE() << "a dialog stayed open: " << qPrintable(open->windowTitle());
            open->close();
        });
        m_timer.start(20);
        m_watchdog.start(kMostMilliseconds);
    }
    ~WhenOpen() { EXPECT_EQ(m_acts, 1); }

private:
    static constexpr int kMostMilliseconds = 60'000;

    QTimer m_timer;
    QTimer m_watchdog;
    int m_acts = 0;
};

} // namespace nurv::test
