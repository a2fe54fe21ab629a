// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace nurv::test {

/// Collects the log lines of every thread while it lives, and keeps them from the
/// former receiver. One at a time. May be asked from any thread.
class LogLines {
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    /// The lines so far that contain the text.
    [[nodiscard]] QStringList with(const QString &text) const;
    /// The lines so far of one logging category.
    [[nodiscard]] QStringList of(const QString &category) const;

private:
    struct Line {
        QString category;
        QString text;
    };

    static void take(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QList<Line> m_lines;
    QtMessageHandler m_former;
};

} // namespace nurv::test
