// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/Progress.h"

#include "shntool/RunMessages.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace nurv {

namespace {

constexpr unsigned kComplete = 100;
constexpr std::array kFaces{":-(", ":-/", ":-\\", ":-|", ":-)", ":-D"};
constexpr std::array kSpinner{'|', '/', '-', '\\'};

std::string percentText(unsigned percent)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%3u%% ", percent);
    return text.data();
}

std::string inBrackets(const std::string &file, const std::string &detail)
{
    return " [" + file + (detail.empty() ? "]" : "] (" + detail + ")");
}

} // namespace

Progress::Progress(const RunMessages &messages, Task task) : m_messages(messages), m_task(std::move(task))
{
    show();
}

void Progress::show()
{
    m_percent = 0;
    m_hasFailed = false;
    std::string head = m_task.action + inBrackets(m_task.file, m_task.fileDetail);
    if (!m_task.link.empty())
        head += ' ' + m_task.link + inBrackets(m_task.otherFile, m_task.otherDetail);
    head += " : ";
    switch (m_messages.progressStyle) {
    case ProgressStyle::Percent: head += percentText(0); break;
    case ProgressStyle::Spinner: head += "| "; break;
    case ProgressStyle::Faces: head += std::string(kFaces[0]) + ' '; break;
    case ProgressStyle::Dots:
    case ProgressStyle::None: break;
    }
    m_messages.tell(head);
}

void Progress::add(uint64_t bytes)
{
    m_doneBytes += bytes;
    if (m_hasFailed)
        return show();
    if (m_task.totalBytes == 0)
        return;
    const double share = static_cast<double>(m_doneBytes) / static_cast<double>(m_task.totalBytes);
    showPercent(static_cast<unsigned>(std::min(share, 1.0) * kComplete));
}

void Progress::showPercent(unsigned percent)
{
    constexpr unsigned kPerDot = 10;
    constexpr unsigned kPerFace = 20;
    if (percent <= m_percent)
        return;
    std::string text;
    switch (m_messages.progressStyle) {
    case ProgressStyle::Percent: text = "\b\b\b\b\b" + percentText(percent); break;
    case ProgressStyle::Dots: text.assign(percent / kPerDot - m_percent / kPerDot, '.'); break;
    case ProgressStyle::Spinner:
        for (unsigned step = m_percent + 1; step <= percent; ++step)
            text += std::string("\b\b") + kSpinner[step % kSpinner.size()] + ' ';
        break;
    case ProgressStyle::Faces:
        if (percent / kPerFace != m_percent / kPerFace)
            text = std::string("\b\b\b\b") + kFaces[percent / kPerFace] + ' ';
        break;
    case ProgressStyle::None: break;
    }
    m_percent = percent;
    if (!text.empty())
        m_messages.tell(text);
}

void Progress::succeed()
{
    if (m_task.totalBytes != 0)
        showPercent(kComplete);
    m_messages.tell(m_messages.progressStyle == ProgressStyle::Dots ? " OK\n" : "OK\n");
}

void Progress::noteFailure() const
{
    m_messages.noteFailure(m_task.action + inBrackets(m_task.file, {})
                          + (m_task.link.empty() ? "" : ' ' + m_task.link + inBrackets(m_task.otherFile, {})));
}

void Progress::fail()
{
    m_messages.tell(m_messages.progressStyle == ProgressStyle::Dots ? " ERROR\n" : "ERROR\n");
    noteFailure();
    m_hasFailed = true;
}

} // namespace nurv
