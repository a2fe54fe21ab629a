// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FormatSettings.h"

#include "shntool/RunMessages.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace nurv {

namespace {

constexpr std::string_view kPlaceholder = "%f";
constexpr std::string_view kExtension = "ext=";

std::vector<std::string> wordsOf(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t";
    std::vector<std::string> words;
    for (size_t start = text.find_first_not_of(kBlanks); start != std::string_view::npos;) {
        const size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
        words.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(kBlanks, end);
    }
    return words;
}

/// A name that begins with a dash would be taken for an option.
std::string asArgument(const std::string &file)
{
    return file.starts_with('-') ? "./" + file : file;
}

bool isSox(std::string_view program)
{
    return program.substr(program.find_last_of('/') + 1) == "sox";
}

/// sox opens what a name means as a pattern of glob(7): a name that is one would be another file.
std::string asPattern(const std::string &file)
{
    if (file.find_first_of("*?[{") == std::string::npos)
        return file;
    std::string pattern;
    for (const char letter : file) {
        if (std::string_view("*?[]{},~\\").find(letter) != std::string_view::npos)
            pattern += '\\';
        pattern += letter;
    }
    return pattern;
}

/// The word with the file in place of every "%f".
std::string withFile(std::string word, const std::string &file)
{
    for (size_t at = 0; (at = word.find(kPlaceholder, at)) != std::string::npos; at += file.size())
        word.replace(at, kPlaceholder.size(), file);
    return word;
}

CodecCommand commandOf(const std::map<std::string_view, CodecCommand> &changed, std::string_view format,
                       std::string_view program, std::string_view arguments)
{
    CodecCommand command{.program = std::string(program), .arguments = {}};
    if (const auto found = changed.find(format); found != changed.end())
        command = found->second;
    if (command.arguments.empty())
        command.arguments = wordsOf(arguments);
    return command;
}

std::string variableName(std::string_view format, const char *end)
{
    std::string name = "ST_";
    for (const char letter : format)
        name += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return name + end;
}

} // namespace

FormatSettings::FormatSettings(const RunMessages &messages) : m_messages(messages), m_outputFormat(&audioFormats().front()) {}

void FormatSettings::readInputOption(const std::string &text)
{
    std::vector<std::string> words = wordsOf(text);
    if (words.empty())
        m_messages.failWithHelp("missing input format name");
    const AudioFormat *format = audioFormatNamed(words.front());
    if (!format)
        m_messages.failWithHelp("invalid file format: [" + words.front() + "]");
    if (format->reads == AudioFormat::By::Nobody)
        m_messages.failWithHelp("format does not support input: [" + words.front() + "]");
    if (words.size() > 1)
        m_decoders[format->name] = {.program = words[1], .arguments = {words.begin() + 2, words.end()}};
}

void FormatSettings::readOutputOption(const std::string &text)
{
    std::vector<std::string> words = wordsOf(text);
    if (words.empty())
        m_messages.failWithHelp("missing output format name");
    const AudioFormat *format = audioFormatNamed(words.front());
    if (!format)
        m_messages.failWithHelp("invalid file format: [" + words.front() + "]");
    if (format->writes == AudioFormat::By::Nobody)
        m_messages.failWithHelp("format does not support output: [" + words.front() + "]");
    m_outputFormat = format;
    words.erase(words.begin());
    setEncoder(*format, std::move(words));
}

void FormatSettings::setEncoder(const AudioFormat &format, std::vector<std::string> words)
{
    if (!words.empty() && words.front().starts_with(kExtension)) {
        m_extensions[format.name] = words.front().substr(kExtension.size());
        words.erase(words.begin());
    }
    if (!words.empty())
        m_encoders[format.name] = {.program = words.front(), .arguments = {words.begin() + 1, words.end()}};
}

void FormatSettings::readEnvironment()
{
    for (const AudioFormat &format : audioFormats()) {
        if (const char *value = std::getenv(variableName(format.name, "_DEC").c_str());
            value && format.reads != AudioFormat::By::Nobody) {
            const std::vector<std::string> words = wordsOf(value);
            if (!words.empty())
                m_decoders[format.name] = {.program = words.front(), .arguments = {words.begin() + 1, words.end()}};
        }
        if (const char *value = std::getenv(variableName(format.name, "_ENC").c_str());
            value && format.writes != AudioFormat::By::Nobody)
            setEncoder(format, wordsOf(value));
    }
}

std::string FormatSettings::extension(const AudioFormat &format) const
{
    const auto found = m_extensions.find(format.name);
    return found == m_extensions.end() ? std::string(format.extension) : found->second;
}

bool FormatSettings::decodesItself(const AudioFormat &format) const
{
    return !m_decoders.contains(format.name);
}

std::string FormatSettings::decoderName(const AudioFormat &format) const
{
    return commandOf(m_decoders, format.name, format.decoder, {}).program;
}

std::vector<std::string> FormatSettings::decoderWords(const AudioFormat &format, const std::string &file) const
{
    const CodecCommand command = commandOf(m_decoders, format.name, format.decoder, format.decoderArguments);
    std::vector<std::string> words{command.program};
    bool hasFile = false;
    for (const std::string &argument : command.arguments) {
        const bool isFile = argument.find(kPlaceholder) != std::string::npos;
        hasFile = hasFile || isFile;
        if (isFile)
            words.push_back(isSox(command.program) ? asPattern(asArgument(file)) : asArgument(file));
        else
            words.push_back(argument);
    }
    if (!hasFile) {
        m_messages.fail("decoder argument list does not contain filename placeholder [%f] for format: ["
                       + std::string(format.name) + "]");
    }
    return words;
}

std::vector<std::string> FormatSettings::encoderWords(const AudioFormat &format, const std::string &file) const
{
    const CodecCommand command = commandOf(m_encoders, format.name, format.encoder, format.encoderArguments);
    if (command.program.empty())
        m_messages.fail("format requires an encoder: [" + std::string(format.name) + "]");
    std::vector<std::string> words{command.program};
    bool hasFile = false;
    for (const std::string &argument : command.arguments) {
        hasFile = hasFile || argument.find(kPlaceholder) != std::string::npos;
        words.push_back(withFile(argument, asArgument(file)));
    }
    if (!hasFile) {
        m_messages.fail("encoder argument list does not contain filename placeholder [%f] for format: ["
                       + std::string(format.name) + "]");
    }
    return words;
}

} // namespace nurv
