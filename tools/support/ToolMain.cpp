// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ToolMain.h"

#include "support/SystemCalls.h"
#include "support/TemporaryFile.h"
#include "support/ToolError.h"
#include "text/VisibleText.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace nurv {

namespace {

constexpr int kFailed = 1;

/// The question among the arguments, "--help" or "--version", empty when there is none.
std::string_view questionIn(std::span<const std::string> arguments)
{
    for (const std::string &argument : arguments) {
        if (argument == "--")
            break;
        if (argument == "--help" || argument == "--version")
            return argument;
    }
    return {};
}

void print(const std::string &text)
{
    const auto *bytes = reinterpret_cast<const uint8_t *>(text.data());
    if (writeAll(STDOUT_FILENO, {bytes, text.size()}))
        return;
    if (errno == EPIPE)
        throw ClosedPipe();
    failWrite("standard output", errno);
}

void printFailure(const ToolText &text, const ToolError &error)
{
    printMessage(std::string(text.name) + ": " + error.what());
    if (error.kind() == ToolError::Kind::BadArguments)
        std::fprintf(stderr, "Try '%s --help'.\n", text.name);
}

/// A file opened later must not get the number of a standard stream that is closed.
void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Open the wrong way round: using it fails, as using a closed stream would.
        if (::fcntl(stream, F_GETFD) < 0) [[maybe_unused]]
            const int same = ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace

void printMessage(const std::string &line)
{
    std::fprintf(stderr, "%s\n", visibleText(line).c_str());
}

int toolMain(const ToolText &text, int argc, char **argv, const std::function<int(std::span<const std::string>)> &run,
             const std::function<void(const ToolError &)> &report)
{
    // A closed pipe is an error of write(2), so that what is left behind is cleaned up.
    std::signal(SIGPIPE, SIG_IGN);
    // So is a file that would grow beyond the limit of the system.
    std::signal(SIGXFSZ, SIG_IGN);
    occupyStandardStreams();
    removeTemporaryFilesOnSignals();
    const auto fail = [&](const ToolError &error) {
        if (report)
            report(error);
        else
            printFailure(text, error);
        return kFailed;
    };
    try {
        const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        const std::string_view question = questionIn(arguments);
        if (question.empty())
            return run(arguments);
        print(question == "--help" ? text.help : std::string(text.name) + " (Nurv Audio Workbench) " NURV_VERSION "\n");
        return 0;
    } catch (const ToolError &error) {
        return fail(error);
    } catch (const ClosedPipe &) {
        return kFailed;
    } catch (const std::bad_alloc &) {
        return fail(ToolError(ToolError::Kind::OutOfMemory, "not enough memory"));
    } catch (const std::exception &error) {
        return fail(ToolError(ToolError::Kind::InvalidInput, error.what()));
    }
}

} // namespace nurv
