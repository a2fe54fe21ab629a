// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QElapsedTimer>
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
            QWidget *const open = QApplication::activeModalWidget();
            if (m_sinceStart.elapsed() > kMostMilliseconds && open != nullptr) {
                ADD_FAILURE() << "a dialog stayed open: " << qPrintable(open->windowTitle());
                m_timer.stop();
                open->close();
                return;
            }
            auto *const dialog = qobject_cast<Dialog *>(open);
            if (m_acts > 0 || dialog == nullptr || !dialog->isVisible() || QApplication::focusWidget() == nullptr)
                return;
            ++m_acts;
            act(*dialog);
        });
        m_sinceStart.start();
        m_timer.start(20);
    }
    ~WhenOpen() { EXPECT_EQ(m_acts, 1); }

private:
    static constexpr qint64 kMostMilliseconds = 60'000;

    QElapsedTimer m_sinceStart;
    QTimer m_timer;
    int m_acts = 0;
};

} // namespace nurv::test
