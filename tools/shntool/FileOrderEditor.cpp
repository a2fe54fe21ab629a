// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FileOrderEditor.h"

#include "shntool/RunMessages.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>
#include <sstream>

#include <unistd.h>

namespace nurv {

namespace {

constexpr int kQuitStatus = 255;

constexpr const char *kCommands = "\nCommands:\n\n"
                                  "  [s]wap a b   (swaps positions a and b)\n"
                                  "  [m]ove a b   (moves position a to position b, shifting everything in between)\n"
                                  "  [b]egin a    (moves position a to the beginning of the list)\n"
                                  "  [e]nd a      (moves position a to the end of the list)\n"
                                  "  [n]atural    (sorts files using a natural sorting algorithm -- t1, t2, ... t10)\n"
                                  "  [a]scii      (sorts files based on their ascii characters -- t1, t10, t2, ...)\n"
                                  "  [d]one       (quits this editor, and continues with processing)\n";

/// What was typed, in words.
struct OrderCommand {
    std::string word;
    std::vector<std::string> positions;
};

std::optional<OrderCommand> readCommand()
{
    std::string line;
    if (!std::getline(std::cin, line))
        return std::nullopt;
    std::istringstream words(line);
    OrderCommand command;
    words >> command.word;
    for (std::string position; words >> position;)
        command.positions.push_back(position);
    return command;
}

class Editor {
public:
    Editor(std::vector<std::string> &names, const RunMessages &messages) : m_names(names), m_messages(messages) {}

    void run()
    {
        m_messages.tellAlways("\nEntering file order editor.\n");
        do {
            show();
        } while (obey(readCommand().value_or(OrderCommand{.word = "d", .positions = {}})));
        m_messages.tellAlways("Exiting file order editor.\n\n");
    }

private:
    void show() const;
    bool obey(const OrderCommand &command);
    void moveTo(const OrderCommand &command);
    void swap(const OrderCommand &command);
    void moveToEdge(const OrderCommand &command, bool isEnd);
    [[nodiscard]] std::optional<size_t> position(const std::string &text) const;
    void move(size_t from, size_t to);

    std::vector<std::string> &m_names;
    const RunMessages &m_messages;
};

void Editor::show() const
{
    std::string text = "\nFile list:\n\n";
    for (size_t i = 0; i < m_names.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        text += std::string(number.size() < 2 ? 1 : 0, ' ') + number + ": " + m_names[i] + '\n';
    }
    m_messages.tellAlways(text + kCommands + "  [q]uit       (quits " + m_messages.program()
                         + " [you can also use Ctrl-C])\n\n? ");
}

bool Editor::obey(const OrderCommand &command)
{
    m_messages.tellAlways("\n");
    switch (command.word.empty() ? '\0' : command.word.front()) {
    case 's': swap(command); break;
    case 'm': moveTo(command); break;
    case 'b': moveToEdge(command, false); break;
    case 'e': moveToEdge(command, true); break;
    case 'n': sortNaturally(m_names); break;
    case 'a': sortAscii(m_names); break;
    case 'd': return false;
    case 'q': m_messages.tellAlways("Quitting " + m_messages.program() + ".\n"); throw RunEnded(kQuitStatus);
    default: m_messages.tellAlways("Unrecognized command: " + command.word + '\n'); break;
    }
    return true;
}

/// Counted from 0.
std::optional<size_t> Editor::position(const std::string &text) const
{
    size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    if (number < 1 || number > m_names.size())
        return std::nullopt;
    return number - 1;
}

void Editor::move(size_t from, size_t to)
{
    const auto at = [this](size_t index) { return m_names.begin() + static_cast<std::ptrdiff_t>(index); };
    if (from < to)
        std::rotate(at(from), at(from + 1), at(to + 1));
    else
        std::rotate(at(to), at(from), at(from + 1));
}

void Editor::swap(const OrderCommand &command)
{
    if (command.positions.size() < 2)
        return m_messages.tellAlways("Not enough positions supplied to the 'swap' command\n");
    const auto one = position(command.positions[0]);
    const auto other = position(command.positions[1]);
    if (!one || !other)
        return m_messages.tellAlways("One or more of your entries are out of range.  Try again.\n");
    m_messages.tellAlways("Swapping positions " + std::to_string(*one + 1) + " and " + std::to_string(*other + 1)
                         + "...\n");
    std::swap(m_names[*one], m_names[*other]);
}

void Editor::moveTo(const OrderCommand &command)
{
    if (command.positions.size() < 2)
        return m_messages.tellAlways("Not enough positions supplied to the 'move' command\n");
    const auto from = position(command.positions[0]);
    const auto to = position(command.positions[1]);
    if (!from || !to)
        return m_messages.tellAlways("One or more of your entries are out of range.  Try again.\n");
    m_messages.tellAlways("Moving position " + std::to_string(*from + 1) + " to position " + std::to_string(*to + 1)
                         + "...\n");
    move(*from, *to);
}

void Editor::moveToEdge(const OrderCommand &command, bool isEnd)
{
    const std::string edge = isEnd ? "end" : "begin";
    if (command.positions.empty())
        return m_messages.tellAlways("Missing a position for the '" + edge + "' command.\n");
    const auto from = position(command.positions.front());
    if (!from)
        return m_messages.tellAlways("Your entry is out of range.  Try again.\n");
    m_messages.tellAlways("Moving position " + std::to_string(*from + 1) + " to the "
                         + (isEnd ? "end of the list...\n" : "beginning of the list\n"));
    move(*from, isEnd ? m_names.size() - 1 : 0);
}

} // namespace

void sortAscii(std::vector<std::string> &names)
{
    std::ranges::stable_sort(names);
}

void sortNaturally(std::vector<std::string> &names)
{
    std::ranges::stable_sort(names, [](const std::string &left, const std::string &right) {
        return ::strverscmp(left.c_str(), right.c_str()) < 0;
    });
}

void editFileOrder(std::vector<std::string> &names, const RunMessages &messages)
{
    if (::isatty(STDIN_FILENO) == 0)
        messages.fail("standard input is not a terminal -- cannot invoke interactive file order editor");
    Editor(names, messages).run();
}

} // namespace nurv
