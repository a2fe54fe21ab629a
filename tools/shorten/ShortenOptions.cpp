// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shorten/ShortenOptions.h"

#include "support/ToolError.h"

#include <charconv>
#include <string_view>
#include <vector>

namespace nurv::shorten {

namespace {

std::string dashed(char option)
{
    return {'-', option};
}

uint32_t number(char option, const std::string &text, uint32_t least, uint32_t most)
{
    uint32_t value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < least || value > most) {
        badArguments(dashed(option) + " takes a number from " + std::to_string(least) + " to " + std::to_string(most)
                     + ", not '" + text + "'");
    }
    return value;
}

/// Options of the program's long history that this one does without.
std::string whyRefused(char option)
{
    switch (option) {
    case 'n':
    case 'q':
    case 'r': return "lossy compression is not supported";
    case 'k':
    case 'e':
    case 'i':
    case 's':
    case 'S': return "seek tables are written while compressing to a named file, and never by themselves";
    case 'a':
    case 'c':
    case 'd': return "only WAV files are compressed, whose header says it all";
    default: return {};
    }
}

/// Walks through the arguments as getopt(3) does: "-b512", "-b 512", "-xb512".
class Parser {
public:
    explicit Parser(std::span<const std::string> arguments) : m_arguments(arguments) {}

    ShortenOptions parse()
    {
        while (m_next < m_arguments.size()) {
            const std::string &argument = m_arguments[m_next++];
            if (m_onlyNames || argument == "-" || !argument.starts_with('-'))
                m_names.push_back(argument);
            else if (argument == "--")
                m_onlyNames = true;
            else if (argument.starts_with("--"))
                badArguments("there is no option '" + argument + "'");
            else
                parseLetters(argument.substr(1));
        }
        takeNames();
        return m_options;
    }

private:
    void parseLetters(const std::string &letters)
    {
        for (size_t i = 0; i < letters.size(); ++i) {
            const char option = letters[i];
            if (option == 'x') {
                m_options.isDecoding = true;
                continue;
            }
            const std::string reason = whyRefused(option);
            if (!reason.empty())
                badArguments("the option " + dashed(option) + " is not offered: " + reason);
            if (std::string_view("bmptv").find(option) == std::string_view::npos)
                badArguments("there is no option '" + dashed(option) + "'");
            takeValue(option, letters.substr(i + 1));
            return;
        }
    }

    void takeValue(char option, std::string value)
    {
        if (value.empty()) {
            if (m_next == m_arguments.size())
                badArguments("the option " + dashed(option) + " lacks its value");
            value = m_arguments[m_next++];
        }
        switch (option) {
        case 'b': m_options.blockSize = number(option, value, 1, kMaxBlockSize); break;
        case 'm': m_options.meanCount = number(option, value, 0, kMaxMeanCount); break;
        case 'v': m_options.wantsSeekTable = number(option, value, 2, 3) == 3; break;
        case 'p':
            if (value != "0")
                badArguments("-p " + value + ": linear prediction is not offered, only -p 0");
            break;
        default:
            if (value != "wav")
                badArguments("-t " + value + ": only WAV files are compressed, -t wav");
        }
    }

    void takeNames()
    {
        if (m_names.size() > 2)
            badArguments("there is one input and one output, '" + m_names[2] + "' is too much");
        if (!m_names.empty())
            m_options.input = m_names[0];
        if (m_names.size() == 2)
            m_options.output = m_names[1];
    }

    std::span<const std::string> m_arguments;
    size_t m_next = 0;
    bool m_onlyNames = false;
    std::vector<std::string> m_names;
    ShortenOptions m_options;
};

} // namespace

ShortenOptions ShortenOptions::parse(std::span<const std::string> arguments)
{
    return Parser(arguments).parse();
}

} // namespace nurv::shorten
