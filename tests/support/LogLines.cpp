// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogLines.h"

#include <mutex>

namespace nurv::test {

namespace {

std::mutex g_lock;
LogLines *g_current = nullptr;

} // namespace

LogLines::LogLines()
{
    const std::scoped_lock lock(g_lock);
    g_current = this;
    m_former = qInstallMessageHandler(&LogLines::take);
}

LogLines::~LogLines()
{
    qInstallMessageHandler(m_former);
    // A thread may be inside the handler still.
    const std::scoped_lock lock(g_lock);
    g_current = nullptr;
}

void LogLines::take(QtMsgType, const QMessageLogContext &context, const QString &text)
{
    const std::scoped_lock lock(g_lock);
    if (g_current != nullptr)
        g_current->m_lines.append({QString::fromUtf8(context.category), text});
}

QStringList LogLines::with(const QString &text) const
{
    const std::scoped_lock lock(g_lock);
    QStringList found;
    for (const Line &line : m_lines) {
        if (line.text.contains(text))
            found.append(line.text);
    }
    return found;
}

QStringList LogLines::of(const QString &category) const
{
    const std::scoped_lock lock(g_lock);
    QStringList found;
    for (const Line &line : m_lines) {
        if (line.category == category)
            found.append(line.text);
    }
    return found;
}

} // namespace nurv::test
