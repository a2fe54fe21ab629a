// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/ShntoolProgram.h"

#include "shntool/AudioFormat.h"
#include "shntool/EndingCleanup.h"
#include "shntool/Mode.h"
#include "shntool/ModeRun.h"
#include "shntool/ModeTable.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <span>

#include <getopt.h>

namespace nurv {

namespace {

constexpr std::string_view kAliasPrefix = "shn";

std::string baseName(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

std::string column(std::string_view text, size_t width)
{
    return std::string(text.size() < width ? width - text.size() : 0, ' ') + std::string(text);
}

std::string coder(AudioFormat::By by, std::string_view program)
{
    switch (by) {
    case AudioFormat::By::Itself: return "shntool";
    case AudioFormat::By::Program: return std::string(program);
    case AudioFormat::By::Nobody: break;
    }
    return "-";
}

void showFormats(const RunMessages &messages)
{
    std::string text = messages.program() + " " NURV_VERSION
                       + " supported file formats:\n\n"
                         " format    ext     input    output  description\n"
                         " ------    ---     -----    ------  -----------\n";
    for (const AudioFormat &format : audioFormats()) {
        const std::string extension = format.extension.empty() ? "-" : '.' + std::string(format.extension);
        text += ' ' + column(format.name, 6) + "  " + column(extension, 5) + "  "
                + column(coder(format.reads, format.decoder), 8) + "  "
                + column(coder(format.writes, format.encoder), 8) + "  " + std::string(format.description) + '\n';
    }
    messages.tell(text + '\n');
}

void showArguments(const RunMessages &messages)
{
    std::string text = messages.program() + " " NURV_VERSION
                       + " default file format arguments:\n\n"
                         " format    action   arguments\n"
                         " ------    ------   ---------\n";
    for (const AudioFormat &format : audioFormats()) {
        const std::string name(format.name);
        std::string label = "  " + column(name, 5);
        if (format.reads == AudioFormat::By::Program) {
            text += label + "  decoding:  -i \"" + name + ' ' + std::string(format.decoder) + ' '
                    + std::string(format.decoderArguments) + "\"\n";
            label = std::string(7, ' ');
        }
        if (format.writes == AudioFormat::By::Program) {
            text += label + "  encoding:  -o \"" + name + " ext=" + std::string(format.extension) + ' '
                    + std::string(format.encoder) + ' ' + std::string(format.encoderArguments) + "\"\n";
        }
    }
    messages.tell(text + '\n');
}

void showModes(const RunMessages &messages)
{
    std::string text =
        messages.program() + " " NURV_VERSION + " supported modes:\n\n   mode  description\n   ----  -----------\n";
    for (const ModeEntry &mode : modeTable())
        text += "  " + column(mode.name, 5) + "  " + std::string(mode.description) + '\n';
    messages.tell(text + "\n  For help with any of the above modes, type:  '" + messages.program() + " mode -h'\n\n");
}

std::string versionText(const std::string &name)
{
    return name + " (Nurv Audio Workbench) " NURV_VERSION "\n"
           + "Copyright (C) 2026 The Nurv Audio Workbench developers\n\n"
             "This is free software.  You may redistribute copies of it under the terms of\n"
             "the GNU General Public License <http://www.gnu.org/licenses/gpl.html>.\n"
             "There is NO WARRANTY, to the extent permitted by law.\n\n";
}

std::string modelessHelp(const std::string &program)
{
    return "Usage: " + program + " mode ...\n       " + program
           + " [OPTIONS]\n\nOptions:\n\n"
             "  -m      show detailed mode module information\n"
             "  -f      show detailed format module information\n"
             "  -a      show default format module arguments\n"
             "  -v      show version information\n"
             "  -h      show this help screen\n\n";
}

/// The words of a call, as getopt(3) takes them: it moves the pointers about.
class Words {
public:
    explicit Words(std::vector<std::string> words) : m_words(std::move(words))
    {
        for (std::string &word : m_words)
            m_pointers.push_back(word.data());
        m_pointers.push_back(nullptr);
        optind = 0; // starts anew, whatever was read before
    }

    int next(const char *letters) { return ::getopt(static_cast<int>(m_words.size()), m_pointers.data(), letters); }
    [[nodiscard]] std::vector<std::string> rest() const
    {
        return {m_pointers.begin() + optind, m_pointers.begin() + static_cast<std::ptrdiff_t>(m_words.size())};
    }

private:
    std::vector<std::string> m_words;
    std::vector<char *> m_pointers;
};

int runModeless(const RunMessages &messages, std::vector<std::string> words)
{
    if (words.size() < 2)
        messages.failWithHelp("missing arguments");
    if (!words[1].starts_with('-'))
        messages.failWithHelp("invalid mode: [" + words[1] + "]");
    Words arguments(std::move(words));
    bool wantsHelp = false;
    for (int option = 0; (option = arguments.next("afhmv")) != '?';) {
        switch (option) {
        case 'a': showArguments(messages); return EXIT_SUCCESS;
        case 'f': showFormats(messages); return EXIT_SUCCESS;
        case 'm': showModes(messages); return EXIT_SUCCESS;
        case 'v': messages.tell(versionText(messages.program())); return EXIT_SUCCESS;
        case 'h': wantsHelp = true; continue;
        default: break;
        }
        if (!wantsHelp)
            messages.failWithHelp("invalid mode: [" + (arguments.rest().empty() ? "-" : arguments.rest().front()) + "]");
        messages.tell(modelessHelp(messages.program()));
        return EXIT_SUCCESS;
    }
    messages.tell('\n' + modelessHelp(messages.program()));
    return EXIT_FAILURE;
}

ProgressStyle progressStyle(const RunMessages &messages, const std::string &name)
{
    constexpr std::array kNames{"pct", "dot", "spin", "face", "none"};
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        messages.failWithHelp("invalid progress indicator type: [" + name + "]");
    return static_cast<ProgressStyle>(found - kNames.begin());
}

FileArguments::Order fileOrder(const RunMessages &messages, const std::string &name)
{
    constexpr std::array kNames{"ask", "ascii", "natural", "none"};
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        messages.failWithHelp("invalid reorder type: [" + name + "]");
    return static_cast<FileArguments::Order>(found - kNames.begin());
}

OutputFiles::Overwrite overwriteAction(const RunMessages &messages, const std::string &name)
{
    constexpr std::array kNames{"ask", "always", "never"};
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        messages.failWithHelp("invalid overwrite action: [" + name + "]");
    return static_cast<OutputFiles::Overwrite>(found - kNames.begin());
}

/// Of the options that all modes have, or all that write files. Returns false for one of others.
bool takeGlobalOption(ModeRun &run, bool writesFiles, int option, const char *value)
{
    switch (option) {
    case 'D': ++run.messages.debugLevel; return true;
    case 'F': run.names.listName = value; return true;
    case 'H': run.time = TimeText(true); return true;
    case 'P': run.messages.progressStyle = progressStyle(run.messages, value); return true;
    case 'i': run.formats.readInputOption(value); return true;
    case 'q': run.messages.isQuiet = true; return true;
    case 'r': run.names.order = fileOrder(run.messages, value); return true;
    case 'w': run.messages.hidesWarnings = true; return true;
    default: break;
    }
    if (!writesFiles)
        return false;
    switch (option) {
    case 'O': run.outputs.overwrite = overwriteAction(run.messages, value); return true;
    case 'a': run.outputs.prefix = value; return true;
    case 'd': run.outputs.folder = value; return true;
    case 'o': run.formats.readOutputOption(value); return true;
    case 'z': run.outputs.postfix = value; return true;
    default: return false;
    }
}

int runMode(const ModeEntry &entry, ModeRun &run, std::vector<std::string> words)
{
    run.names.readsAhead = entry.writesFiles;
    const std::unique_ptr<Mode> mode = entry.make(run);
    run.messages.debugLevel = std::getenv("ST_DEBUG") ? 1 : 0;
    run.formats.readEnvironment();
    const std::string letters =
        std::string(entry.writesFiles ? "DF:HP:hi:qr:vwO:a:d:o:z:" : "DF:HP:hi:qr:vw") + entry.letters;
    Words arguments(std::move(words));
    for (int option = 0; (option = arguments.next(letters.c_str())) != -1;) {
        switch (option) {
        case 'h': run.messages.tellAlways(helpOf(entry, run.messages.command())); return EXIT_SUCCESS;
        case 'v': run.messages.tellAlways(versionText(run.messages.command() + " mode module")); return EXIT_SUCCESS;
        case '?': run.messages.tellAlways('\n' + helpOf(entry, run.messages.command())); return EXIT_FAILURE;
        default: break;
        }
        if (!takeGlobalOption(run, entry.writesFiles, option, optarg))
            mode->takeOption(static_cast<char>(option), optarg);
    }
    run.names.setArguments(arguments.rest());
    const int status = mode->execute();
    if (status != EXIT_SUCCESS)
        run.messages.tellHiddenFault();
    if (run.messages.flushResults())
        return status;
    run.messages.tellAlways(run.messages.command() + ": cannot write to standard output\n");
    return EXIT_FAILURE;
}

int dispatch(std::vector<std::string> words)
{
    const std::string program = baseName(words.front().c_str());
    if (program.starts_with(kAliasPrefix)) {
        if (const ModeEntry *mode = modeNamed(std::string_view(program).substr(kAliasPrefix.size()))) {
            ModeRun run(program, "");
            return runMode(*mode, run, std::move(words));
        }
    }
    const ModeEntry *mode = words.size() > 1 ? modeNamed(words[1]) : nullptr;
    if (!mode)
        return runModeless(RunMessages(program, ""), std::move(words));
    words.erase(words.begin() + 1);
    ModeRun run(program, std::string(mode->name));
    return runMode(*mode, run, std::move(words));
}

} // namespace

int runShntool(int argc, char **argv)
{
    constexpr const char *kHelp =
        "Usage: shntool MODE [OPTION]... [FILE]...\n"
        "\n"
        "Reports on, converts, cuts and joins sound without loss. 'shntool -m' lists the modes,\n"
        "'shntool MODE -h' has the options of each, nurv-shntool(1) tells more.\n"
        "\n"
        "  --help      show this text\n"
        "  --version   show the version\n";
    // What belongs to modes is not looked at.
    const bool isQuestion =
        argc == 2 && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "--version");
    const auto run = [&](std::span<const std::string>) {
        EndingCleanup cleanup; // others change it by way of current()
        int status = EXIT_FAILURE;
        try {
            std::vector<std::string> words(argv, argv + std::max(argc, 0));
            if (words.empty())
                words.emplace_back("shntool");
            status = dispatch(std::move(words));
        } catch (const RunEnded &end) {
            status = end.exitStatus();
            std::fflush(stdout);
        }
        // A signal that is ending the program decides how it ends.
        const std::unique_lock<std::mutex> lock = EndingCleanup::hold();
        return status;
    };
    return toolMain({.name = "shntool", .help = kHelp}, isQuestion ? argc : 1, argv, run);
}

} // namespace nurv
