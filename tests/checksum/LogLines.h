// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <mutex>

namespace nurv::test {

/// Collects the log lines of every thread while it lives. One at a time.
class LogLines {
public:
    LogLines()
    {
        s_lines = &m_lines;
        s_former = qInstallMessageHandler(&LogLines::take);
    }
    ~LogLines() { qInstallMessageHandler(s_former); }
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    /// The lines so far that contain the text.
    [[nodiscard]] QStringList with(const QString &text) const
    {
        const std::scoped_lock lock(s_lock);
        return m_lines.filter(text);
    }

private:
    static void take(QtMsgType, const QMessageLogContext &, const QString &line)
    {
        const std::scoped_lock lock(s_lock);
        s_lines->append(line);
    }

    static inline std::mutex s_lock;
    static inline QStringList *s_lines = nullptr;
    static inline QtMessageHandler s_former = nullptr;
    QStringList m_lines;
};

} // namespace nurv::test
