// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/FrontEnd.h"

#include "platform/FileDescriptor.h"
#include "shntool/ChildSupervisor.h"
#include "shntool/DistributionProgram.h"
#include "shntool/NamedConversion.h"
#include "shntool/PrivateFolder.h"
#include "support/Destination.h"
#include "support/SystemCalls.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr int kFailed = 1;

constexpr const char *kHelp = "Usage: shntool [ARGUMENT]...\n"
                              "       shntool conv [OPTION]... -n FILE SOURCE\n"
                              "\n"
                              "Starts the shntool of the distribution with the same arguments; 'shntool -h' is its\n"
                              "own help. It finds the programs shorten, ttaenc and mac beside this one.\n"
                              "\n"
                              "  conv -n FILE   convert SOURCE and name the result FILE; -O always replaces a file\n"
                              "                 that is there. All other options are those of shntool conv.\n"
                              "  --help         show this text\n"
                              "  --version      show the version\n"
                              "\n"
                              "The exit status is that of shntool.\n";

[[noreturn]] void refuse(const std::string &text)
{
    throw ToolError(ToolError::Kind::Write, text);
}

/// Refuses what the conversion must not, or cannot, replace.
void checkOutput(const NamedConversion &conversion)
{
    struct stat output {};
    if (::stat(conversion.output.c_str(), &output) != 0)
        return;
    struct stat source {};
    if (conversion.source && ::stat(conversion.source->c_str(), &source) == 0 && source.st_dev == output.st_dev
        && source.st_ino == output.st_ino) {
        refuse("output file would overwrite input file -- skipping: [" + conversion.output + "]");
    }
    if (!S_ISREG(output.st_mode) && !S_ISDIR(output.st_mode))
        refuse("this is no regular file: [" + conversion.output + "]");
    if (conversion.overwrite == NamedConversion::Overwrite::Never)
        refuse("output file already exists -- skipping: [" + conversion.output + "]");
    if (conversion.overwrite == NamedConversion::Overwrite::Ask) {
        refuse("output file already exists: [" + conversion.output + "]  use \"-O always\" to replace it");
    }
}

/// The one file that the conversion has made.
std::string fileMadeIn(const PrivateFolder &folder)
{
    const std::vector<std::string> files = folder.contents();
    if (files.size() != 1 || !std::filesystem::is_regular_file(files.front())) {
        refuse("the conversion made " + std::to_string(files.size()) + " files, but one is needed for option -n");
    }
    return files.front();
}

/// Gives the file the mode of the one that it shall replace, and has it on the disk before:
/// a power cut must leave one of both.
bool prepareToReplace(const std::string &file, const struct stat &former)
{
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.isOpen())
        return false;
    // A file system without modes has nothing to keep.
    [[maybe_unused]] const int done = ::fchmod(descriptor.get(), former.st_mode & 0777);
    return ::fsync(descriptor.get()) == 0;
}

void moveInPlace(const std::string &file, const std::string &destination, bool mayReplace)
{
    struct stat former {};
    if (mayReplace && ::stat(destination.c_str(), &former) == 0 && !prepareToReplace(file, former))
        failWrite(destination, errno);
    const auto move = [&](unsigned flags) {
        return ::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, destination.c_str(), flags) == 0;
    };
    bool isDone = move(mayReplace ? 0 : RENAME_NOREPLACE);
    // Not every file system knows the flag. The name was free when the conversion began.
    if (!isDone && !mayReplace && errno == EINVAL && ::access(destination.c_str(), F_OK) != 0)
        isDone = move(0);
    if (!isDone)
        failWrite(destination, errno);
}

/// How a conversion ended: by the signal, where that is not 0, else with the status.
struct Ending {
    int signal = 0;
    int status = 0;
};

Ending convert(const NamedConversion &conversion, const std::string &program, const std::string &programName)
{
    checkOutput(conversion);
    const std::string destination = destinationOf(conversion.output);
    ChildSupervisor supervisor;
    const PrivateFolder folder(destination);
    std::vector<std::string> words{programName, "conv"};
    words.insert(words.end(), conversion.options.begin(), conversion.options.end());
    words.insert(words.end(), {"-d", folder.path()});
    // A decoder would take a leading dash for an option, as would the program itself.
    if (conversion.source)
        words.push_back(conversion.source->starts_with('-') ? "./" + *conversion.source : *conversion.source);
    const int end = supervisor.run(program, std::move(words));
    if (supervisor.endingSignal() != 0)
        return {.signal = supervisor.endingSignal()};
    if (WIFSIGNALED(end))
        return {.signal = WTERMSIG(end)};
    if (WEXITSTATUS(end) == 0) {
        moveInPlace(fileMadeIn(folder), destination, conversion.overwrite == NamedConversion::Overwrite::Always);
    }
    return {.status = WEXITSTATUS(end)};
}

} // namespace

int runFrontEnd(int argc, char **argv, const std::string &usualProgram)
{
    // shntool itself knows neither.
    if (argc == 2 && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "--version"))
        return toolMain({.name = "shntool", .help = kHelp}, argc, argv, [](std::span<const std::string>) { return 0; });
    const std::optional<std::string> program = findDistributionProgram(usualProgram);
    if (!program) {
        printMessage("shntool: the shntool of the distribution is not installed; the package \"shntool\" provides it");
        return kNothingToHandOverTo;
    }
    try {
        ::setenv("PATH", pathWithFolder(ownFolder()).c_str(), 1);
        const std::vector<std::string> arguments(argv, argv + argc);
        if (arguments.size() > 1 && arguments[1] == "conv") {
            if (const auto conversion = parseNamedConversion(std::span(arguments).subspan(2))) {
                const Ending ending = convert(*conversion, *program, arguments.front());
                if (ending.signal != 0)
                    dieBySignal(ending.signal);
                return ending.status;
            }
        }
    } catch (const std::exception &error) {
        printMessage(std::string("shntool [conv]: error: ") + error.what());
        return kFailed;
    }
    ::execv(program->c_str(), argv);
    printMessage("shntool: cannot start " + *program + ": " + errorText(errno));
    return kNothingToHandOverTo;
}

} // namespace nurv
