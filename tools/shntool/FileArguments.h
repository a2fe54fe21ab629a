// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/FileNumber.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace nurv {

class RunMessages;
struct WaveInfo;

/// The names of the files of a run: from the file of the option -F, else from the command line, else from standard
/// input, one a line. A line has up to 64 KiB, and all of them up to 64 MiB.
class FileArguments {
public:
    enum class Order { Ask, Ascii, Natural, None };

    explicit FileArguments(const RunMessages &messages) : m_messages(messages) {}

    Order order = Order::Natural;
    std::optional<std::string> listName; ///< of -F
    /// Whether all names are known before the first is taken, so that nothing is written over what a later one names.
    /// Not those that somebody types.
    bool readsAhead = false;

    /// The names on the command line.
    void setArguments(std::span<const std::string> arguments);
    [[nodiscard]] bool hasArguments() const { return !m_arguments.empty(); }
    [[nodiscard]] size_t argumentCount() const { return m_arguments.size(); }

    /// The next one; nothing at the end. Blocks where somebody types. Ends the run where the list cannot be read.
    [[nodiscard]] std::optional<std::string> next();

    /// Another file that the run reads.
    void addSource(const std::string &file);
    /// Whether the name stands for a file that the run reads: one of those named, as far as they are known, a list
    /// or standard input. Links are followed.
    [[nodiscard]] bool isSource(const std::string &file) const;

    /// All that are left.
    [[nodiscard]] std::vector<std::string> all();

    /// Brings names into the order that was asked for.
    void sort(std::vector<std::string> &names) const;
    /// The same of files, by their names.
    void sortInfos(std::vector<WaveInfo> &infos) const;
    /// Only where the order is to be asked for.
    void sortIfAsked(std::vector<std::string> &names) const;

private:
    void open();
    void readList();
    void readStandardInput();
    [[nodiscard]] std::optional<std::string> readLine(std::istream &input);
    void addListedSources();

    const RunMessages &m_messages;
    std::vector<std::string> m_arguments;
    size_t m_taken = 0;
    bool m_isOpen = false;
    size_t m_bytesRead = 0;
    bool m_hasList = false;    ///< what is left comes from there
    std::istringstream m_list; ///< what the file of -F holds, or standard input
    std::set<FileNumber> m_sources;
};

} // namespace nurv
