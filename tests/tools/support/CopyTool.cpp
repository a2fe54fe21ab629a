// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later

// copy_tool [--wait] IN OUT: copies IN to OUT. With --wait it prints "written" once a
// part of OUT is in the file system, and then waits for a signal.

#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"

#include <array>
#include <cstdio>

#include <unistd.h>

namespace {

int copy(std::span<const std::string> arguments)
{
    const bool wait = !arguments.empty() && arguments.front() == "--wait";
    if (wait)
        arguments = arguments.subspan(1);
    if (!arguments.empty() && arguments.front() == "--exhaust")
        throw std::bad_alloc();
    if (arguments.size() != 2)
        nurv::badArguments("two files are needed");
    nurv::InputFile input(arguments[0]);
    nurv::OutputFile output(arguments[1], input);
    std::array<uint8_t, 1000> block{};
    while (const size_t count = input.read(block))
        output.write(std::span(block).first(count));
    if (wait) {
        output.flush();
        std::fputs("written\n", stderr);
        for (;;)
            ::pause();
    }
    output.commit();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return nurv::toolMain({"copy_tool", "copy_tool [--wait] IN OUT\n"}, argc, argv, copy);
}
