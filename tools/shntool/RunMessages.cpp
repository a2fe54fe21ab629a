// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/RunMessages.h"

#include "text/VisibleText.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace nurv {

namespace {

/// The text with what a terminal would obey made visible, but for the line breaks and backspaces
/// that this program writes itself.
std::string forTerminal(const std::string &text)
{
    std::string shown;
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find_first_of("\n\b", start), text.size());
        shown += visibleText(text.substr(start, end - start));
        if (end < text.size())
            shown += text[end];
        start = end + 1;
    }
    return shown;
}

/// Whether who started the program wants its output without delay.
bool isUnbuffered()
{
    const char *const wish = std::getenv("NSUnbufferedIO");
    return wish != nullptr && std::string_view(wish) == "YES";
}

void write(std::FILE *stream, const std::string &text)
{
    // What is wrong with a file then stands where the file does.
    if (stream == stderr && isUnbuffered())
        std::fflush(stdout);
    const std::string &shown = ::isatty(::fileno(stream)) != 0 ? forTerminal(text) : text;
    std::fwrite(shown.data(), 1, shown.size(), stream);
}

} // namespace

RunMessages::RunMessages(std::string program, std::string mode) : m_program(std::move(program)), m_mode(std::move(mode))
{
}

std::string RunMessages::command() const
{
    return m_mode.empty() ? m_program : m_program + ' ' + m_mode;
}

std::string RunMessages::prefix() const
{
    return m_mode.empty() ? m_program + ": " : m_program + " [" + m_mode + "]: ";
}

void RunMessages::print(const std::string &text) const
{
    write(stdout, text);
}

bool RunMessages::flushResults() const
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void RunMessages::tell(const std::string &text) const
{
    if (!isQuiet)
        tellAlways(text);
}

void RunMessages::tellAlways(const std::string &text) const
{
    m_hasTold = true;
    write(stderr, text);
}

/// With further lines below the first one, behind as many blanks as the label has letters.
std::string RunMessages::labelled(const std::string &label, const std::string &text) const
{
    std::string lines = prefix() + label;
    for (const char letter : text) {
        lines += letter;
        if (letter == '\n')
            lines += prefix() + std::string(label.size(), ' ');
    }
    return lines + '\n';
}

void RunMessages::warn(const std::string &text) const
{
    if (m_hiddenFault.empty())
        m_hiddenFault = m_failedTask.empty() ? text : m_failedTask + ": " + text;
    remark(text);
}

void RunMessages::remark(const std::string &text) const
{
    if (!hidesWarnings)
        tell(labelled("warning: ", text));
}

void RunMessages::tellHiddenFault() const
{
    if (!m_hasTold && !m_hiddenFault.empty())
        tellAlways(labelled("error: ", m_hiddenFault));
}

void RunMessages::debug(const std::string &text) const
{
    if (debugLevel > 0)
        tellAlways(labelled("debug1: ", text));
}

void RunMessages::debugFile(size_t number, const std::string &name) const
{
    debug("returning file " + std::to_string(number) + ": [" + name + "]");
}

void RunMessages::debugShortRead(size_t wanted, size_t got) const
{
    debug("tried to read " + std::to_string(wanted) + " bytes, but only read " + std::to_string(got)
          + " -- possible truncated/corrupt file");
}

void RunMessages::fail(const std::string &text) const
{
    tellAlways(labelled("error: ", text));
    throw RunEnded(EXIT_FAILURE);
}

void RunMessages::failWithHelp(const std::string &text) const
{
    tellAlways(labelled("error: ", text) + prefix() + '\n' + prefix() + "type '" + command() + " -h' for help\n");
    throw RunEnded(EXIT_FAILURE);
}

} // namespace nurv
