// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileNames.h"

#include "shntool/Console.h"
#include "shntool/FileOrderEditor.h"
#include "shntool/WaveInfo.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include <unistd.h>

namespace nurv {

void FileNames::setArguments(std::span<const std::string> arguments)
{
    m_arguments.assign(arguments.begin(), arguments.end());
}

void FileNames::open()
{
    m_isOpen = true;
    if (listName) {
        m_console.debug("reading input filenames from file: [" + *listName + "]");
        m_list.open(*listName);
        if (!m_list)
            m_console.fail("could not open input filename file: [" + *listName + "]");
    } else if (hasArguments()) {
        m_console.debug("reading input filenames from command line");
    } else {
        m_console.debug("reading input filenames from stdin");
        if (::isatty(STDIN_FILENO) != 0)
            m_console.tell("enter input filename(s):\n");
    }
}

std::optional<std::string> FileNames::next()
{
    if (!m_isOpen)
        open();
    if (!listName && hasArguments())
        return m_taken < m_arguments.size() ? std::optional(m_arguments[m_taken++]) : std::nullopt;
    std::string line;
    if (!std::getline(listName ? static_cast<std::istream &>(m_list) : std::cin, line))
        return std::nullopt;
    if (line.ends_with('\r'))
        line.pop_back();
    line.resize(std::strlen(line.c_str()));
    return line;
}

std::vector<std::string> FileNames::all()
{
    std::vector<std::string> names;
    while (std::optional<std::string> name = next())
        names.push_back(std::move(*name));
    return names;
}

void FileNames::sort(std::vector<std::string> &names) const
{
    switch (order) {
    case Order::Ask: editFileOrder(names, m_console); break;
    case Order::Ascii: sortAscii(names); break;
    case Order::Natural: sortNaturally(names); break;
    case Order::None: break;
    }
}

void FileNames::sortInfos(std::vector<WaveInfo> &infos) const
{
    std::vector<std::string> sorted;
    for (const WaveInfo &info : infos)
        sorted.push_back(info.fileName);
    sort(sorted);
    for (size_t i = 0; i < infos.size(); ++i) {
        const auto found = std::find_if(infos.begin() + static_cast<std::ptrdiff_t>(i), infos.end(),
                                        [&](const WaveInfo &info) { return info.fileName == sorted[i]; });
        std::iter_swap(infos.begin() + static_cast<std::ptrdiff_t>(i), found);
    }
}

void FileNames::sortIfAsked(std::vector<std::string> &names) const
{
    if (order == Order::Ask)
        editFileOrder(names, m_console);
}

} // namespace nurv
