// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/OutputFiles.h"

#include "shntool/RunMessages.h"
#include "shntool/FileArguments.h"
#include "shntool/FileWaveOutput.h"
#include "shntool/FormatSettings.h"
#include "shntool/PrivateFolder.h"
#include "shntool/ProgramWaveOutput.h"
#include "shntool/Progress.h"
#include "support/ToolError.h"

#include <cctype>
#include <cerrno>
#include <iostream>

#include <sys/stat.h>
#include <unistd.h>

namespace nurv {

namespace {

bool exists(const std::string &name)
{
    struct stat status {};
    return ::lstat(name.c_str(), &status) == 0;
}

/// A link is replaced like a file; what else is there is nothing to replace.
bool canBeReplaced(const std::string &name)
{
    struct stat status {};
    return ::lstat(name.c_str(), &status) == 0 && (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode))
           && (S_ISLNK(status.st_mode) || ::access(name.c_str(), W_OK) == 0);
}

/// The folder, however it is spelled, and the name in it: equal for what will be one file.
std::string placeOf(const std::string &name)
{
    const size_t base = name.rfind('/') + 1;
    const std::optional<FileNumber> folder = FileNumber::of(base == 0 ? "." : name.substr(0, base));
    if (!folder)
        return name;
    return std::to_string(folder->device) + ':' + std::to_string(folder->inode) + '/' + name.substr(base);
}

/// A line from the terminal; nothing at its end.
std::optional<std::string> answer()
{
    std::string line;
    if (!std::getline(std::cin, line))
        return std::nullopt;
    return line;
}

} // namespace

OutputFiles::OutputFiles(const RunMessages &messages, const FormatSettings &formats, const FileArguments &sources)
    : m_messages(messages), m_formats(formats), m_sources(sources)
{
}

std::string OutputFiles::inFolder(const std::string &name) const
{
    if (folder.empty() || folder == ".")
        return name;
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

std::string OutputFiles::extended(const std::string &name) const
{
    const AudioFormat &format = m_formats.outputFormat();
    if (format.name == "term")
        return "terminal";
    return format.name == "null" ? "/dev/null" : name + '.' + m_formats.extension(format);
}

std::string OutputFiles::nameFrom(const WaveInfo &source, const std::string &defaultPostfix) const
{
    return named(source, folder.empty() ? source.fileName.substr(0, source.fileName.rfind('/') + 1) : std::string(),
                 defaultPostfix);
}

std::string OutputFiles::nameHere(const WaveInfo &source, const std::string &defaultPostfix) const
{
    return named(source, {}, defaultPostfix);
}

std::string OutputFiles::named(const WaveInfo &source, const std::string &place,
                               const std::string &defaultPostfix) const
{
    if (fullName)
        return folder.empty() || fullName->starts_with('/') ? *fullName : inFolder(*fullName);
    std::string base = source.fileName.substr(source.fileName.rfind('/') + 1);
    const std::string ending = '.' + m_formats.extension(*source.format);
    if (ending.size() > 1 && base.ends_with(ending))
        base.resize(base.size() - ending.size());
    const std::string name = extended(prefix.value_or("") + base + postfix.value_or(defaultPostfix));
    return isFile() ? inFolder(place + name) : name;
}

/// Whether the output has a name at all.
bool OutputFiles::isFile() const
{
    return m_formats.outputFormat().name != "term" && m_formats.outputFormat().name != "null";
}

std::string OutputFiles::nameOf(const std::string &base, const std::string &middle) const
{
    const std::string name = extended(prefix.value_or(base) + middle + postfix.value_or(""));
    return isFile() ? inFolder(name) : name;
}

std::string OutputFiles::nameAround(const std::string &middle) const
{
    const std::string name =
        extended(prefix.value_or("") + (middle.ends_with('.') ? middle.substr(0, middle.size() - 1) : middle)
                 + postfix.value_or(""));
    return isFile() ? inFolder(name) : name;
}

bool OutputFiles::areSame(const std::string &one, const std::string &other)
{
    const std::optional<FileNumber> first = FileNumber::of(one);
    return first && first == FileNumber::of(other);
}

std::unique_ptr<WaveOutput> OutputFiles::open(std::string &name, Progress *progress)
{
    m_refusal.clear();
    const AudioFormat &format = m_formats.outputFormat();
    if (format.name == "null")
        return std::make_unique<StreamWaveOutput>(-1);
    if (format.name == "term")
        return std::make_unique<StreamWaveOutput>(STDOUT_FILENO);
    const bool isAsked = overwrite == Overwrite::Ask;
    if (isTaken(name) && !mayWrite(name, progress))
        return nullptr;
    m_refusal = refusalOf(name, isAsked);
    if (!m_refusal.empty())
        return nullptr;
    // Before anything is made for a name that nothing can have.
    struct stat status {};
    if (::lstat(name.c_str(), &status) != 0 && errno != ENOENT)
        return nullptr;
    try {
        std::unique_ptr<WaveOutput> output = make(name);
        m_places.insert(placeOf(name));
        return output;
    } catch (const ToolError &error) {
        m_messages.debug(error.what());
        return nullptr;
    }
}

std::unique_ptr<WaveOutput> OutputFiles::make(const std::string &name)
{
    if (m_swept.insert(name.substr(0, name.rfind('/') + 1)).second)
        PrivateFolder::sweepBeside(name);
    const AudioFormat &format = m_formats.outputFormat();
    if (format.name == "wav")
        return std::make_unique<FileWaveOutput>(name);
    // What is wrong with the words is told before any folder is made.
    static_cast<void>(m_formats.encoderWords(format, name));
    return std::make_unique<ProgramWaveOutput>(
        name, [&](const std::string &file) { return m_formats.encoderWords(format, file); });
}

bool OutputFiles::isTaken(const std::string &name) const
{
    return exists(name) || isOutput(name);
}

bool OutputFiles::isOutput(const std::string &name) const
{
    return m_places.contains(placeOf(name)) || isMade(name);
}

bool OutputFiles::isMade(const std::string &name) const
{
    const std::optional<FileNumber> there = FileNumber::ofLink(name);
    return there && m_made.contains(*there);
}

std::string OutputFiles::refusalOf(const std::string &name, bool isAgreed) const
{
    if (m_sources.isSource(name))
        return "output file would overwrite input file: [" + name + "]";
    if (isOutput(name) && !(isAgreed && isMade(name)))
        return "output file would overwrite another output of this run: [" + name + "]";
    return {};
}

void OutputFiles::noteMade(const std::string &name)
{
    if (const std::optional<FileNumber> made = FileNumber::ofLink(name))
        m_made.insert(*made);
}

void OutputFiles::noteGivenUp(const std::string &name)
{
    m_places.erase(placeOf(name));
}

bool OutputFiles::mayWrite(std::string &name, Progress *progress)
{
    if (overwrite == Overwrite::Never || (overwrite == Overwrite::Ask && !ask(name, progress)))
        return false;
    return !exists(name) || canBeReplaced(name);
}

bool OutputFiles::ask(std::string &name, Progress *progress)
{
    m_messages.tell("\n");
    if (::isatty(STDIN_FILENO) == 0) {
        m_messages.fail("standard input is not a terminal -- cannot prompt for overwrite action.  "
                       "use \"-O always\" or \"-O never\".");
    }
    const auto decide = [&](bool mayWrite) {
        if (progress)
            progress->show();
        return mayWrite;
    };
    for (;;) {
        m_messages.tellAlways("File already exists: [" + name
                             + "]\nOverwrite ([y]es, [n]o, [a]lways, ne[v]er, [r]ename)? ");
        const std::optional<std::string> line = answer();
        const char letter = line && !line->empty() ? line->front() : (line ? '?' : 'n');
        switch (std::tolower(static_cast<unsigned char>(letter))) {
        case 'a': overwrite = Overwrite::Always; [[fallthrough]];
        case 'y': return decide(true);
        case 'v': overwrite = Overwrite::Never; [[fallthrough]];
        case 'n': return decide(false);
        case 'r': return rename(name, progress);
        default: break;
        }
    }
}

/// Asks for another name, and about that one where it is taken too.
bool OutputFiles::rename(std::string &name, Progress *progress)
{
    m_messages.tellAlways("New name: ");
    name = answer().value_or(name);
    if (progress)
        progress->setOtherFile(name);
    if (isTaken(name))
        return ask(name, progress);
    if (progress)
        progress->show();
    return true;
}

} // namespace nurv
