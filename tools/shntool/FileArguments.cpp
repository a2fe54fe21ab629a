// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileArguments.h"

#include "files/FileDescriptor.h"
#include "shntool/RunMessages.h"
#include "shntool/FileOrderEditor.h"
#include "shntool/WaveInfo.h"
#include "support/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr size_t kMostLineBytes = size_t{64} << 10;
constexpr size_t kMostBytes = size_t{64} << 20;
constexpr const char *kLineTooLong = "has a line of more than 64 KiB";
constexpr const char *kTooLong = "has more than 64 MiB";

/// The name in a line, which may end as on other systems.
std::string nameIn(std::string line)
{
    if (line.ends_with('\r'))
        line.pop_back();
    line.resize(std::strlen(line.c_str()));
    return line;
}

} // namespace

void FileArguments::setArguments(std::span<const std::string> arguments)
{
    m_arguments.assign(arguments.begin(), arguments.end());
    for (const std::string &argument : m_arguments)
        addSource(argument);
    if (const std::optional<FileNumber> input = FileNumber::ofOpenFile(STDIN_FILENO))
        m_sources.insert(*input);
}

void FileArguments::open()
{
    m_isOpen = true;
    if (listName) {
        m_messages.debug("reading input filenames from file: [" + *listName + "]");
        readList();
    } else if (hasArguments()) {
        m_messages.debug("reading input filenames from command line");
    } else {
        m_messages.debug("reading input filenames from stdin");
        if (::isatty(STDIN_FILENO) != 0)
            m_messages.tell("enter input filename(s):\n");
        else if (readsAhead)
            readStandardInput();
    }
}

/// All of it at once: what is no list, as a folder or a device, is told before any of it is used.
void FileArguments::readList()
{
    const std::string label = "input filename file: [" + *listName + "]";
    const FileDescriptor file(::open(listName->c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen())
        m_messages.fail("could not open " + label);
    std::string text;
    std::vector<uint8_t> piece(kMostLineBytes);
    for (ssize_t count = 0; (count = readSome(file.get(), piece)) != 0;) {
        if (count < 0)
            m_messages.fail("could not read " + label + ": " + errorText(errno));
        text.append(piece.begin(), piece.begin() + count);
        const size_t lastEnd = text.rfind('\n');
        if (text.size() - (lastEnd == std::string::npos ? 0 : lastEnd + 1) > kMostLineBytes)
            m_messages.fail(label + ' ' + kLineTooLong);
        if (text.size() > kMostBytes)
            m_messages.fail(label + ' ' + kTooLong);
    }
    m_list.str(std::move(text));
    m_hasList = true;
    addSource(*listName);
    addListedSources();
}

void FileArguments::readStandardInput()
{
    std::string text;
    while (std::optional<std::string> line = readLine(std::cin))
        text += std::move(*line) + '\n';
    m_bytesRead = 0;
    m_list.str(std::move(text));
    m_hasList = true;
    addListedSources();
}

void FileArguments::addListedSources()
{
    if (!readsAhead)
        return;
    for (std::string line; std::getline(m_list, line);)
        addSource(nameIn(std::move(line)));
    m_list.clear();
    m_list.seekg(0);
}

void FileArguments::addSource(const std::string &file)
{
    if (const std::optional<FileNumber> source = FileNumber::of(file))
        m_sources.insert(*source);
}

bool FileArguments::isSource(const std::string &file) const
{
    const std::optional<FileNumber> identity = FileNumber::of(file);
    return identity && m_sources.contains(*identity);
}

std::optional<std::string> FileArguments::readLine(std::istream &input)
{
    std::string line;
    bool isAtEnd = true;
    errno = 0;
    for (int letter = 0; (letter = input.get()) != std::istream::traits_type::eof();) {
        isAtEnd = false;
        if (++m_bytesRead > kMostBytes)
            m_messages.fail(std::string("the list of input filenames ") + kTooLong);
        if (letter == '\n')
            break;
        if (line.size() == kMostLineBytes)
            m_messages.fail(std::string("the list of input filenames ") + kLineTooLong);
        line += static_cast<char>(letter);
    }
    if (&input == &std::cin && std::ferror(stdin) != 0)
        m_messages.fail("could not read input filenames: " + errorText(errno));
    return isAtEnd ? std::nullopt : std::optional(std::move(line));
}

std::optional<std::string> FileArguments::next()
{
    if (!m_isOpen)
        open();
    if (!listName && hasArguments())
        return m_taken < m_arguments.size() ? std::optional(m_arguments[m_taken++]) : std::nullopt;
    std::optional<std::string> line = readLine(m_hasList ? static_cast<std::istream &>(m_list) : std::cin);
    if (!line)
        return std::nullopt;
    std::string name = nameIn(std::move(*line));
    addSource(name);
    return name;
}

std::vector<std::string> FileArguments::all()
{
    std::vector<std::string> names;
    while (std::optional<std::string> name = next())
        names.push_back(std::move(*name));
    return names;
}

void FileArguments::sort(std::vector<std::string> &names) const
{
    switch (order) {
    case Order::Ask: editFileOrder(names, m_messages); break;
    case Order::Ascii: sortAscii(names); break;
    case Order::Natural: sortNaturally(names); break;
    case Order::None: break;
    }
}

void FileArguments::sortInfos(std::vector<WaveInfo> &infos) const
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

void FileArguments::sortIfAsked(std::vector<std::string> &names) const
{
    if (order == Order::Ask)
        editFileOrder(names, m_messages);
}

} // namespace nurv
