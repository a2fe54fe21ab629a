// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/AlacDecoder.h"
#include "support/InputFile.h"
#include "support/OutputFile.h"
#include "support/ToolError.h"
#include "support/ToolMain.h"

namespace {

constexpr const char *kHelp = "Usage: shntool-alac FILE\n"
                              "\n"
                              "Writes the Apple Lossless sound of an MPEG-4 file to standard output, as a WAV file.\n"
                              "\n"
                              "  --help      show this text\n"
                              "  --version   show the version\n"
                              "\n"
                              "The exit status is 0, or 1 when anything failed; what could be decoded was written.\n";

int run(std::span<const std::string> arguments)
{
    if (arguments.size() != 1)
        nurv::badArguments("one file is needed");
    // Compared with the output, so that none is written over itself.
    const nurv::InputFile input(arguments.front());
    nurv::OutputFile output("-", input);
    nurv::AlacDecoder decoder(arguments.front());
    decoder.decode([&](std::span<const uint8_t> bytes) {
        output.write(bytes);
        // Some readers want the header alone.
        output.flush();
    });
    output.commit();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return nurv::toolMain({.name = "shntool-alac", .help = kHelp}, argc, argv, run);
}
